#pragma once

#include <filesystem>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "jet/database.h"
#include "jet/dialect/token.h"
#include "jet/dialect/translate.h"
#include "jet/engine/index_advisor.h"
#include "jet/engine/mirror_table.h"
#include "jet/engine/statement_cache.h"
#include "jet/storage/database_file.h"
#include "jet/storage/file_system.h"

namespace jet::engine {

struct Copy;

/// A statement ready to be run any number of times.
struct Plan {
    std::shared_ptr<Copy> copy;  ///< that it was made for, kept alive by it
    dialect::Translation translation;
    std::vector<MirrorTable*> tables;  ///< as in translation.tables
    std::uint64_t generation = 0;      ///< of its tables when their indexes were last looked at
    StatementLease::Home statements;   ///< compiled and idle
    std::int64_t starts = 0;
    bool isLoaded = false;  ///< the copies of its tables hold all that it reads
};

/// Rows still to be fetched from a running statement. A change to one of its tables could disturb
/// it, so it is asked to fetch them first.
class RowStream {
  public:
    virtual ~RowStream() = default;
    virtual bool Reads(const MirrorTable& table) const = 0;
    virtual void Drain() = 0;
};

/// What is held in memory of a database: the copy of its tables, and everything prepared so far.
struct Copy {
    Copy() : statements(sqlite), advisor(sqlite, statements) {}

    Sqlite sqlite;
    StatementCache statements;
    std::vector<std::unique_ptr<MirrorTable>> tables;
    IndexAdvisor advisor;
    std::unordered_map<std::string, std::shared_ptr<Plan>> plans;
};

/// An open database: the file, its copy in memory, and the transaction under way.
class Session {
  public:
    Session(const std::filesystem::path& path, OpenMode mode, const NeededTables& needed,
            const std::shared_ptr<storage::FileSystem>& files = storage::RealFileSystem());

    Session(const Session&) = delete;
    Session& operator=(const Session&) = delete;
    /// Plans and their copy hold each other.
    ~Session() { copy_->plans.clear(); }

    const std::vector<std::unique_ptr<MirrorTable>>& Tables() const { return copy_->tables; }
    /// Damaged tables.
    const std::vector<DamagedTable>& Damaged() const { return damaged_; }
    /// Error(NotFound) if there is no such table, Error(Damaged).
    MirrorTable& Table(std::string_view name);
    const dialect::Catalog& Catalog() const { return catalog_; }

    /// The plan that was added with this signature; null if there is none.
    std::shared_ptr<Plan> FindPlan(const std::string& signature) const;
    std::shared_ptr<Plan> AddPlan(const std::string& signature, dialect::Translation translation);

    /// Loads what the plan looks at with these literals.
    void Load(Plan& plan, const std::vector<dialect::Literal>& literals);
    /// Does the same, and returns the plan's statement with its parameters bound, before its first
    /// step.
    StatementLease Start(Plan& plan, const std::vector<dialect::Literal>& literals);

    /// A step that the interruption may end, see Sqlite.
    bool Step(Statement& statement) { return copy_->sqlite.StepInterruptibly(statement); }
    void SetInterruption(std::function<bool()> wanted);
    void CheckInterruption() const { copy_->sqlite.CheckInterruption(); }

    StatementCache& Statements() { return copy_->statements; }

    void Register(RowStream& stream) { streams_.push_back(&stream); }
    void Unregister(RowStream& stream) noexcept { std::erase(streams_, &stream); }

    /// To be called before rows of the table are changed. Error(ReadOnly) if they must not be.
    void BeforeChange(const MirrorTable& table);
    /// To be called after each statement or record-set change.
    void AfterChange() {
        if (!inTransaction_) file_->CommitIfDue();
    }
    void Flush();
    void SetObserver(RowObserver* observer) {
        if (file_) file_->SetObserver(observer);
    }

    /// A transaction: all changes until its end become durable together, or are all undone. There
    /// can be one at a time: Error(NotSupported).
    void Begin();
    void Commit();
    /// Record sets that are open go on with the rows they have fetched; those of OpenUpdatable and
    /// OpenTable must be opened again.
    void Rollback();
    bool IsInTransaction() const { return inTransaction_; }

    /// Changes to tables and indexes, each a transaction of its own where there is none. One that
    /// fails while the file is being changed takes back the whole transaction.
    void CreateTable(const TableDefinition& definition);
    void DropTable(std::string_view name);
    void CreateIndex(std::string_view table, const IndexDefinition& index);
    void DropIndex(std::string_view table, std::string_view index);

    /// Gives the file up as it was after the last Flush().
    void Discard();
    /// Commits and gives the file up. Record sets can still read what is in memory.
    void Close();

  private:
    template <typename Change>
    void ChangeSchema(Change change);
    void MakeCopy();
    void DrainAll();
    void RequireCurrent(const Plan& plan) const;
    void LookAfterIndexes(Plan& plan);
    bool Inspect(storage::PageStore& pages, const std::string& file, const NeededTables& needed);
    void LeaveOut(const std::string& table, const std::string& reason);
    void RequireSound(std::string_view table) const;

    OpenMode mode_;
    std::vector<DamagedTable> damaged_;
    std::optional<storage::DatabaseFile> file_;  ///< empty once closed
    std::function<bool()> interruption_;
    std::shared_ptr<Copy> copy_;
    dialect::Catalog catalog_;
    std::vector<RowStream*> streams_;
    bool inTransaction_ = false;
};

}  // namespace jet::engine
