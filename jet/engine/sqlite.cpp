#include "jet/engine/sqlite.h"

#include <new>
#include <sqlite3.h>
#include <utility>

#include "jet/error.h"

namespace jet::engine {

namespace {

[[noreturn]] void Fail(sqlite3* database, int code) {
    if (code == SQLITE_NOMEM) throw std::bad_alloc();
    const ErrorKind kind = code == SQLITE_ERROR ? ErrorKind::NotSupported : ErrorKind::Io;
    throw Error(kind, std::string("The statement cannot be executed: ") + sqlite3_errmsg(database));
}

[[noreturn]] void FailInterrupted() {
    throw Error(ErrorKind::Interrupted, "The statement was interrupted");
}

/// Steps of SQLite's machine between two questions whether to go on: some tenths of a millisecond.
constexpr int StepsBetweenQuestions = 10000;

/// SQLite counts its memory under a lock that all databases of the process share. Nobody asks for
/// the count, and the lock costs a twentieth of a run once the process has a second thread, as a
/// window gives it. It can be chosen only before the first database is opened; where something else
/// has opened one before, all works as well.
void DoWithoutMemoryStatistics() {
    [[maybe_unused]] static const int chosen = sqlite3_config(SQLITE_CONFIG_MEMSTATUS, 0);
}

}  // namespace

Statement::Statement(sqlite3* database, const std::string& sql) {
    sqlite3_stmt* statement = nullptr;
    const int code = sqlite3_prepare_v3(database, sql.data(), static_cast<int>(sql.size() + 1),
                                        SQLITE_PREPARE_PERSISTENT, &statement, nullptr);
    if (code != SQLITE_OK) Fail(database, code);
    statement_.reset(statement);
}

void Statement::Finalize::operator()(sqlite3_stmt* statement) const noexcept {
    sqlite3_finalize(statement);
}

void Statement::Check(int code) const {
    if (code != SQLITE_OK) Fail(sqlite3_db_handle(statement_.get()), code);
}

void Statement::BindNull(int parameter) {
    Check(sqlite3_bind_null(statement_.get(), parameter));
}

void Statement::Bind(int parameter, std::int64_t value) {
    Check(sqlite3_bind_int64(statement_.get(), parameter, value));
}

void Statement::Bind(int parameter, double value) {
    Check(sqlite3_bind_double(statement_.get(), parameter, value));
}

void Statement::BindText(int parameter, std::string_view text) {
    const char* data = text.data() ? text.data() : "";
    Check(sqlite3_bind_text64(statement_.get(), parameter, data, text.size(), SQLITE_TRANSIENT,
                              SQLITE_UTF8));
}

void Statement::BindBytes(int parameter, std::string_view bytes) {
    const char* data = bytes.data() ? bytes.data() : "";
    Check(sqlite3_bind_blob64(statement_.get(), parameter, data, bytes.size(), SQLITE_TRANSIENT));
}

bool Statement::Step() {
    const int code = sqlite3_step(statement_.get());
    if (code == SQLITE_ROW) return true;
    if (code == SQLITE_DONE) return false;
    sqlite3* const database = sqlite3_db_handle(statement_.get());
    const std::string message = sqlite3_errmsg(database);
    Reset();
    if (code == SQLITE_NOMEM) throw std::bad_alloc();
    if (code == SQLITE_INTERRUPT) FailInterrupted();
    throw Error(ErrorKind::NotSupported, "The statement cannot be executed: " + message);
}

void Statement::Run() {
    Step();
    Reset();
}

void Statement::Reset() noexcept {
    sqlite3_reset(statement_.get());
}

bool Statement::IsNull(int column) const {
    return sqlite3_column_type(statement_.get(), column) == SQLITE_NULL;
}
bool Statement::IsInteger(int column) const {
    return sqlite3_column_type(statement_.get(), column) == SQLITE_INTEGER;
}
bool Statement::IsText(int column) const {
    return sqlite3_column_type(statement_.get(), column) == SQLITE_TEXT;
}
bool Statement::IsBytes(int column) const {
    return sqlite3_column_type(statement_.get(), column) == SQLITE_BLOB;
}

std::int64_t Statement::Integer(int column) const {
    return sqlite3_column_int64(statement_.get(), column);
}

double Statement::Real(int column) const {
    return sqlite3_column_double(statement_.get(), column);
}

std::span<const std::uint8_t> Statement::Bytes(int column) const {
    const void* data = sqlite3_column_blob(statement_.get(), column);
    const int size = sqlite3_column_bytes(statement_.get(), column);
    return {static_cast<const std::uint8_t*>(data), static_cast<std::size_t>(size)};
}

std::string_view Statement::Text(int column) const {
    const void* data = sqlite3_column_text(statement_.get(), column);
    const int size = sqlite3_column_bytes(statement_.get(), column);
    return {static_cast<const char*>(data), static_cast<std::size_t>(size)};
}

Sqlite::Sqlite() : interruption_(std::make_unique<Interruption>()) {
    DoWithoutMemoryStatistics();
    sqlite3* handle = nullptr;
    const int flags =
        SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE | SQLITE_OPEN_NOMUTEX | SQLITE_OPEN_PRIVATECACHE;
    const int code = sqlite3_open_v2(":memory:", &handle, flags, nullptr);
    handle_.reset(handle);
    if (code != SQLITE_OK) Fail(handle, code);
    // Undoing is this library's own work (the storage has to follow), so SQLite need not log.
    Execute("PRAGMA journal_mode=OFF");
    Execute("PRAGMA analysis_limit=1000");
}

void Sqlite::Execute(const std::string& sql) {
    const int code = sqlite3_exec(handle_.get(), sql.c_str(), nullptr, nullptr, nullptr);
    if (code != SQLITE_OK) Fail(handle_.get(), code);
}

void Sqlite::LetStatementsMakeIndexes(bool yes) {
    if (yes == statementsMakeIndexes_) return;
    statementsMakeIndexes_ = yes;
    Execute(yes ? "PRAGMA automatic_index=ON" : "PRAGMA automatic_index=OFF");
}

void Sqlite::SetInterruption(std::function<bool()> wanted) {
    interruption_->wanted = std::move(wanted);
    const auto ask = [](void* context) {
        const auto& interruption = *static_cast<const Interruption*>(context);
        return interruption.listening && interruption.wanted() ? 1 : 0;
    };
    sqlite3_progress_handler(handle_.get(), interruption_->wanted ? StepsBetweenQuestions : 0, ask,
                             interruption_.get());
}

void Sqlite::CheckInterruption() const {
    if (interruption_->wanted && interruption_->wanted()) FailInterrupted();
}

bool Sqlite::StepInterruptibly(Statement& statement) {
    struct Listening {
        explicit Listening(bool& flag) : on(flag) { on = true; }
        Listening(const Listening&) = delete;
        Listening& operator=(const Listening&) = delete;
        ~Listening() { on = false; }
        bool& on;
    };
    const Listening listening(interruption_->listening);
    return statement.Step();
}

void Sqlite::Close::operator()(sqlite3* database) const noexcept {
    sqlite3_close_v2(database);
}

}  // namespace jet::engine
