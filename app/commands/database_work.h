#pragma once

#include <exception>
#include <filesystem>
#include <functional>
#include <string>

#include "app/console.h"
#include "jet/database.h"

namespace quillon {

/// Opens a database for `work` and closes it again. Ctrl-C, SIGTERM and a terminal that closes end
/// the statement under way; what it has begun to change is forgotten, as it is when `work` throws.
/// The exit status.
int WorkOnDatabase(const std::filesystem::path& file, jet::OpenMode mode, Console console,
                   const std::function<void(jet::Database&)>& work);

/// What an error says, without a full stop, so that more can follow.
std::string Clause(const std::exception& error);

/// Error(Interrupted) once one of those has happened; for work that runs no statements.
void CheckAbort();

}  // namespace quillon
