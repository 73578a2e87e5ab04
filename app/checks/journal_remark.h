#pragma once

#include <filesystem>
#include <string>

#include "jet/journal.h"

namespace quillon {

/// What a database's journal means to whoever looks at the database, and what to do about it;
/// without the last full stop. "" when there is none.
std::string JournalRemark(const std::filesystem::path& database, const jet::JournalState& journal);

}  // namespace quillon
