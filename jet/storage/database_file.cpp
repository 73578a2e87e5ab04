#include "jet/storage/database_file.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <map>
#include <optional>
#include <set>
#include <system_error>
#include <utility>

#include "jet/error.h"
#include "jet/storage/catalog.h"
#include "jet/storage/creation.h"
#include "jet/storage/file_system.h"
#include "jet/storage/header.h"
#include "jet/storage/index/index_key.h"
#include "jet/storage/linked_table.h"
#include "jet/storage/lock_file.h"
#include "jet/storage/named_errors.h"
#include "jet/storage/pager.h"
#include "jet/storage/stored_table.h"

namespace jet::storage {

namespace {

constexpr std::chrono::seconds LongestWait{1};
/// Where many rows change, each group rewrites most pages of the indexes, so there are fewer
/// groups.
constexpr std::chrono::seconds LongestWaitOfMany{4};
constexpr std::size_t ManyChangedPages = 100;
/// 16 MB of changed pages are committed without waiting.
constexpr std::size_t MostChangedPages = 4096;

}  // namespace

class DatabaseFile::Implementation {
  public:
    Implementation(const std::shared_ptr<FileSystem>& files, const std::filesystem::path& path,
                   OpenMode mode, const OpenConditions& conditions) {
        const auto real = files->Resolve(path);
        CheckHeaderOf(*files, real);
        if (mode == OpenMode::ReadWrite) lock_.emplace(real);
        pages_ = std::make_unique<Pager>(files, path, mode == OpenMode::ReadWrite);
        if (pages_->Path() != real) {
            throw Error(ErrorKind::Changed,
                        path.string() + " leads to another file than a moment ago.");
        }
        NamingFile(real.string(), [&] { LoadTables(conditions.needs); });
        if (conditions.inspect) conditions.inspect(*pages_);
        pages_->Recover();
    }

    ~Implementation() {
        if (discarded_) return;
        try {
            pages_->Commit();
        } catch (const Error&) {
            // A destructor cannot report a failure; what the last commit left is whole.
            return;
        }
    }

    Implementation(const Implementation&) = delete;
    Implementation& operator=(const Implementation&) = delete;

    std::vector<std::string> TableNames() const {
        std::vector<std::string> names;
        for (const auto& [name, table] : tables_) {
            if (!linked_.contains(name)) names.push_back(name);
        }
        return names;
    }

    const std::vector<UnreadableTable>& Unreadable() const { return unreadable_; }

    Table& OpenTable(std::string_view name) {
        const auto found = tables_.find(std::string(name));
        if (found == tables_.end()) {
            throw Error(ErrorKind::NotFound,
                        pages_->Path().string() + " has no table " + std::string(name) + ".");
        }
        return found->second;
    }

    void Commit() { pages_->Commit(); }
    void Discard() { discarded_ = true; }

    void CommitIfDue() {
        const std::size_t waiting = pages_->ChangedPages();
        if (waiting == 0) return;
        const auto age = std::chrono::steady_clock::now() - pages_->OldestChange();
        const auto longest = waiting < ManyChangedPages ? LongestWait : LongestWaitOfMany;
        if (age > longest || waiting >= MostChangedPages) pages_->Commit();
    }

  private:
    void LoadTables(const std::function<bool(std::string_view)>& needs) {
        for (const CatalogEntry& entry : ReadCatalog(*pages_)) {
            try {
                LoadTable(entry);
            } catch (const Error& error) {
                if (error.Kind() != ErrorKind::Damaged || !needs || needs(entry.name)) throw;
                unreadable_.push_back({entry.name, error.what()});
            }
        }
    }

    void LoadTable(const CatalogEntry& entry) {
        std::unique_ptr<TableImplementation> table;
        if (entry.isLinked) {
            table =
                std::make_unique<LinkedTable>(pages_->Path().string(), entry.name, entry.linkedTo);
            linked_.insert(entry.name);
        } else {
            auto stored = std::make_unique<StoredTable>(*pages_, entry.name, entry.definition,
                                                        entry.requiredColumns);
            stored->CheckExtent();
            table = std::move(stored);
        }
        tables_.emplace(entry.name, Table(std::move(table)));
    }

    std::optional<LockFile> lock_;  // the last to go
    std::unique_ptr<Pager> pages_;
    bool discarded_ = false;
    struct ByName {
        bool operator()(const std::string& a, const std::string& b) const {
            return CompareTexts(a, b) < 0;
        }
    };

    std::map<std::string, Table, ByName> tables_;
    std::set<std::string, ByName> linked_;
    std::vector<UnreadableTable> unreadable_;
};

DatabaseFile::DatabaseFile(std::unique_ptr<Implementation> implementation)
    : implementation_(std::move(implementation)) {}
DatabaseFile::DatabaseFile(DatabaseFile&&) noexcept = default;
DatabaseFile& DatabaseFile::operator=(DatabaseFile&&) noexcept = default;
DatabaseFile::~DatabaseFile() = default;

DatabaseFile DatabaseFile::Open(const std::filesystem::path& path, OpenMode mode) {
    return Open(path, mode, RealFileSystem());
}

DatabaseFile DatabaseFile::Open(const std::filesystem::path& path, OpenMode mode,
                                const OpenConditions& conditions) {
    return Open(path, mode, RealFileSystem(), conditions);
}

DatabaseFile DatabaseFile::Open(const std::filesystem::path& path, OpenMode mode,
                                const std::shared_ptr<FileSystem>& files,
                                const OpenConditions& conditions) {
    return DatabaseFile(std::make_unique<Implementation>(files, path, mode, conditions));
}

void DatabaseFile::Create(const std::filesystem::path& path,
                          std::span<const TableDefinition> tables) {
    const auto files = RealFileSystem();
    if (files->Exists(path)) {
        throw Error(ErrorKind::Io, path.string() + " exists already.");
    }
    // A new database begins with the commit counters of any other new one, so that a journal which
    // was left for one of them would seem to be its own.
    if (const auto journal = JournalPathFor(path); files->Exists(journal)) {
        throw Error(ErrorKind::Io, journal.string() +
                                       " was left by another database of this name. Move it away "
                                       "first.");
    }
    auto unfinished = path;
    unfinished += ".new";
    files->Remove(unfinished);
    files->Remove(JournalPathFor(unfinished));
    try {
        WriteNewDatabase(files, unfinished, tables);
        files->Rename(unfinished, path);
        files->SyncFolderOf(path);
    } catch (const Error&) {
        std::error_code ignored;
        std::filesystem::remove(unfinished, ignored);
        std::filesystem::remove(JournalPathFor(unfinished), ignored);
        throw;
    }
}

std::vector<std::string> DatabaseFile::TableNames() const {
    return implementation_->TableNames();
}

const std::vector<UnreadableTable>& DatabaseFile::Unreadable() const {
    return implementation_->Unreadable();
}

Table& DatabaseFile::OpenTable(std::string_view name) {
    return implementation_->OpenTable(name);
}

void DatabaseFile::Commit() {
    implementation_->Commit();
}

void DatabaseFile::Discard() {
    implementation_->Discard();
}

void DatabaseFile::CommitIfDue() {
    implementation_->CommitIfDue();
}

}  // namespace jet::storage
