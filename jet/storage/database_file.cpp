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
/// 16 MB of changed pages are committed without waiting.
constexpr std::size_t MostChangedPages = 4096;

void CheckHeaderOf(FileSystem& files, const std::filesystem::path& path) {
    const auto file = files.Open(path, FileAccess::Read);
    Page start;
    const std::size_t size = file->ReadAt(0, start);
    CheckHeader(std::span(start).first(size), path);
}

}  // namespace

class DatabaseFile::Implementation {
  public:
    Implementation(const std::shared_ptr<FileSystem>& files, const std::filesystem::path& path,
                   OpenMode mode) {
        CheckHeaderOf(*files, path);
        if (mode == OpenMode::ReadWrite) lock_.emplace(path);
        pages_ = std::make_unique<Pager>(files, path, mode == OpenMode::ReadWrite);
        NamingFile(path.string(), [this] { LoadTables(); });
    }

    ~Implementation() {
        try {
            pages_->Commit();
        } catch (const Error&) {
            // A destructor has nobody to tell; what the last commit left is whole.
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

    Table& OpenTable(std::string_view name) {
        const auto found = tables_.find(std::string(name));
        if (found == tables_.end()) {
            throw Error(ErrorKind::NotFound,
                        pages_->Path().string() + " has no table " + std::string(name) + ".");
        }
        return found->second;
    }

    void Commit() { pages_->Commit(); }

    void CommitIfDue() {
        const std::size_t waiting = pages_->ChangedPages();
        if (waiting == 0) return;
        const auto age = std::chrono::steady_clock::now() - pages_->OldestChange();
        if (age > LongestWait || waiting >= MostChangedPages) pages_->Commit();
    }

  private:
    void LoadTables() {
        for (const CatalogEntry& entry : ReadCatalog(*pages_)) {
            std::unique_ptr<TableImplementation> table;
            if (entry.isLinked) {
                table = std::make_unique<LinkedTable>(pages_->Path().string(), entry.name,
                                                      entry.linkedTo);
                linked_.insert(entry.name);
            } else {
                auto stored = std::make_unique<StoredTable>(*pages_, entry.name, entry.definition,
                                                            entry.requiredColumns);
                stored->CheckExtent();
                table = std::move(stored);
            }
            tables_.emplace(entry.name, Table(std::move(table)));
        }
    }

    std::optional<LockFile> lock_;  // the last to go
    std::unique_ptr<Pager> pages_;
    struct ByName {
        bool operator()(const std::string& a, const std::string& b) const {
            return CompareTexts(a, b) < 0;
        }
    };

    std::map<std::string, Table, ByName> tables_;
    std::set<std::string, ByName> linked_;
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
                                const std::shared_ptr<FileSystem>& files) {
    return DatabaseFile(std::make_unique<Implementation>(files, path, mode));
}

void DatabaseFile::Create(const std::filesystem::path& path,
                          std::span<const TableDefinition> tables) {
    const auto files = RealFileSystem();
    if (files->Exists(path)) {
        throw Error(ErrorKind::Io, path.string() + " exists already.");
    }
    auto unfinished = path;
    unfinished += ".new";
    try {
        WriteNewDatabase(files, unfinished, tables);
        files->Rename(unfinished, path);
        files->SyncFolderOf(path);
    } catch (const Error&) {
        std::error_code ignored;
        std::filesystem::remove(unfinished, ignored);
        std::filesystem::remove(unfinished += ".journal", ignored);
        throw;
    }
}

std::vector<std::string> DatabaseFile::TableNames() const {
    return implementation_->TableNames();
}

Table& DatabaseFile::OpenTable(std::string_view name) {
    return implementation_->OpenTable(name);
}

void DatabaseFile::Commit() {
    implementation_->Commit();
}

void DatabaseFile::CommitIfDue() {
    implementation_->CommitIfDue();
}

}  // namespace jet::storage
