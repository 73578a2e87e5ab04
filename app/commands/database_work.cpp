#include "app/commands/database_work.h"

#include <ostream>

#include "app/signals.h"

namespace quillon {
namespace {

constexpr int InterruptedStatus = 3;

}  // namespace

int WorkOnDatabase(const std::filesystem::path& file, jet::OpenMode mode, Console console,
                   const std::function<void(jet::Database&)>& work) {
    // Who reads the rows may stop reading, which ends a query like any other filter.
    const AbortSignals signals(BrokenPipe::EndsAsBefore);
    jet::Database database = jet::Database::Open(file, mode, jet::NeededTables::None());
    database.SetInterruption([] { return AbortSignals::AbortRequested(); });
    try {
        work(database);
        return DoneStatus;
    } catch (const jet::Error& error) {
        database.Discard();
        if (error.Kind() != jet::ErrorKind::Interrupted) throw;
        console.out.flush();
        console.err << "quillon: " << error.what() << "; it changed nothing\n";
        return InterruptedStatus;
    }
}

std::string Clause(const std::exception& error) {
    std::string text = error.what();
    if (text.ends_with('.')) text.pop_back();
    return text;
}

void CheckAbort() {
    if (AbortSignals::AbortRequested())
        throw jet::Error(jet::ErrorKind::Interrupted, "The command was interrupted");
}

}  // namespace quillon
