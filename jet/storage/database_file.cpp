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
#include "jet/storage/catalog_writer.h"
#include "jet/storage/compaction.h"
#include "jet/storage/creation.h"
#include "jet/storage/damaged.h"
#include "jet/storage/definitions.h"
#include "jet/storage/file_system.h"
#include "jet/storage/header.h"
#include "jet/storage/index/index_key.h"
#include "jet/storage/linked_table.h"
#include "jet/storage/lock_file.h"
#include "jet/storage/pager.h"
#include "jet/storage/schema_changes.h"
#include "jet/storage/scratch_files.h"
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
    Implementation(const std::shared_ptr<FileSystem>& given, const std::filesystem::path& path,
                   OpenMode mode, const OpenConditions& conditions) {
        const auto files = mode == OpenMode::InMemory ? ScratchFiles(given) : given;
        const auto real = files->Resolve(path);
        CheckHeaderOf(*files, real);
        if (mode == OpenMode::ReadWrite) lock_.emplace(real);
        files_ = files;
        openPages_ = [=] {
            auto pages = std::make_unique<Pager>(files, path, mode != OpenMode::ReadOnly);
            if (pages->Path() == real) return pages;
            throw Error(ErrorKind::Changed,
                        path.string() + " leads to another file than a moment ago.");
        };
        needs_ = conditions.needs;
        pages_ = openPages_();
        NamingFile(real.string(), [&] { LoadTables(); });
        if (conditions.inspect && !pages_->IsKnownWhole() && conditions.inspect(*pages_))
            pages_->RemarkThatWhole();
        pages_->Recover();
    }

    ~Implementation() {
        if (discarded_ || !pages_) return;
        try {
            pages_->Commit();
        } catch (const std::exception&) {
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
        return *found->second;
    }

    void SetObserver(RowObserver* observer) {
        observer_ = observer;
        Pages().SetObserver(observer);
    }

    void Commit() { Pages().Commit(); }
    void Discard() { discarded_ = true; }

    void Revert() {
        tables_.clear();
        stored_.clear();
        catalog_.reset();
        pages_.reset();
        auto pages = openPages_();
        pages_ = std::move(pages);
        pages_->SetObserver(observer_);
        NamingFile(pages_->Path().string(), [&] { LoadTables(); });
        pages_->Recover();
    }

    std::size_t WriteCompacted(const std::filesystem::path& to) {
        Commit();
        return NamingFile(pages_->Path().string(), [&] {
            return storage::WriteCompacted(*pages_, ReadCatalog(*pages_), files_, to);
        });
    }

    Table& CreateTable(const TableDefinition& definition) {
        static_cast<void>(LayoutOf(definition));
        if (Catalog().HasTableOrQuery(definition.name)) {
            throw Error(ErrorKind::NotSupported, "Table " + definition.name +
                                                     " cannot be made: a table or query of this "
                                                     "name is there already.");
        }
        return NamingFile(pages_->Path().string(), [&]() -> Table& {
            CatalogEntry entry;
            entry.name = definition.name;
            entry.definition = AddTable(*pages_, Catalog(), definition);
            for (const ColumnDefinition& column : definition.columns)
                if (column.required) entry.requiredColumns.push_back(column.name);
            LoadTable(entry);
            return *tables_.at(entry.name);
        });
    }

    void DropTable(const std::string& name) {
        OpenStored& table = Stored(name);
        RequireNoRelationship(Pages(), table.page, name);
        NamingFile(pages_->Path().string(), [&] {
            const PageNumber page = table.page;
            tables_.erase(name);
            stored_.erase(name);
            Catalog().RemoveTable(page);
            FreeTable(*pages_, page);
        });
    }

    void CreateIndex(const std::string& name, const IndexDefinition& index) {
        ChangeIndexes(name, [&](const StoredTable& table, PageNumber page) {
            TableDefinition wanted = table.Definition();
            wanted.indexes.push_back(index);
            AddIndex(*pages_, page, wanted);
        });
    }

    void DropIndex(const std::string& name, std::string_view index) {
        ChangeIndexes(name, [&](const StoredTable&, PageNumber page) {
            RemoveIndex(*pages_, page, name, index);
        });
    }

    void CommitIfDue() {
        const std::size_t waiting = Pages().ChangedPages();
        if (waiting == 0) return;
        const auto age = std::chrono::steady_clock::now() - pages_->OldestChange();
        const auto longest = waiting < ManyChangedPages ? LongestWait : LongestWaitOfMany;
        if (age > longest || waiting >= MostChangedPages) pages_->Commit();
    }

  private:
    struct OpenStored {
        StoredTable* table;
        PageNumber page;
        std::vector<std::string> required;
    };

    Pager& Pages() {
        if (!pages_) throw Error(ErrorKind::Io, "The database could not be opened again.");
        return *pages_;
    }

    CatalogWriter& Catalog() {
        if (!catalog_) catalog_ = std::make_unique<CatalogWriter>(Pages());
        return *catalog_;
    }

    OpenStored& Stored(const std::string& name) {
        const auto found = stored_.find(name);
        if (found == stored_.end()) static_cast<void>(OpenTable(name).RowCount());
        if (found == stored_.end()) {
            throw Error(ErrorKind::NotSupported, "Table " + name + " is not in this file.");
        }
        return found->second;
    }

    /// The table's object goes on with the new definition.
    template <typename Change>
    void ChangeIndexes(const std::string& name, Change change) {
        OpenStored& open = Stored(name);
        if (const auto reason = open.table->ReadOnlyReason()) {
            throw Error(ErrorKind::NotSupported,
                        "Table " + name + " cannot be changed: " + *reason + ".");
        }
        NamingFile(pages_->Path().string(), [&] {
            open.table->MakeNow();
            change(*open.table, open.page);
            open.table->ReadDefinition(open.required);
        });
    }

    void LoadTables() {
        unreadable_.clear();
        for (const CatalogEntry& entry : ReadCatalog(*pages_)) {
            try {
                LoadTable(entry);
            } catch (const Error& error) {
                if (error.Kind() != ErrorKind::Damaged || !needs_ || needs_(entry.name)) throw;
                unreadable_.push_back({entry.name, error.what()});
            }
        }
    }

    void LoadTable(const CatalogEntry& entry) {
        std::unique_ptr<Table> table;
        if (entry.isLinked) {
            table =
                std::make_unique<LinkedTable>(pages_->Path().string(), entry.name, entry.linkedTo);
            linked_.insert(entry.name);
        } else {
            auto stored = std::make_unique<StoredTable>(*pages_, entry.name, entry.definition,
                                                        entry.requiredColumns);
            stored->CheckExtent();
            stored_.insert_or_assign(
                entry.name, OpenStored{stored.get(), entry.definition, entry.requiredColumns});
            table = std::move(stored);
        }
        tables_.emplace(entry.name, std::move(table));
    }

    std::optional<LockFile> lock_;  // the last to go
    std::shared_ptr<FileSystem> files_;
    std::function<std::unique_ptr<Pager>()> openPages_;
    std::function<bool(std::string_view)> needs_;
    std::unique_ptr<Pager> pages_;
    RowObserver* observer_ = nullptr;
    std::unique_ptr<CatalogWriter> catalog_;
    bool discarded_ = false;
    struct ByName {
        bool operator()(const std::string& a, const std::string& b) const {
            return CompareTexts(a, b) < 0;
        }
    };

    std::map<std::string, std::unique_ptr<Table>, ByName> tables_;
    std::map<std::string, OpenStored, ByName> stored_;  ///< those of them that are in the file
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

void DatabaseFile::SetObserver(RowObserver* observer) {
    implementation_->SetObserver(observer);
}

void DatabaseFile::Commit() {
    implementation_->Commit();
}

Table& DatabaseFile::CreateTable(const TableDefinition& definition) {
    return implementation_->CreateTable(definition);
}

void DatabaseFile::DropTable(std::string_view name) {
    implementation_->DropTable(std::string(name));
}

void DatabaseFile::CreateIndex(std::string_view table, const IndexDefinition& index) {
    implementation_->CreateIndex(std::string(table), index);
}

void DatabaseFile::DropIndex(std::string_view table, std::string_view index) {
    implementation_->DropIndex(std::string(table), index);
}

std::size_t DatabaseFile::WriteCompacted(const std::filesystem::path& to) {
    return implementation_->WriteCompacted(to);
}

void DatabaseFile::Revert() {
    implementation_->Revert();
}

void DatabaseFile::Discard() {
    implementation_->Discard();
}

void DatabaseFile::CommitIfDue() {
    implementation_->CommitIfDue();
}

}  // namespace jet::storage
