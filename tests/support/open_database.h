#pragma once

#include <filesystem>
#include <memory>

#include "platform/database.h"

namespace quillon::support {

/// Opens a database file with the adapter that the program uses.
std::unique_ptr<Connection> OpenDatabase(const std::filesystem::path& path);

}  // namespace quillon::support
