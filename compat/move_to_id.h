#pragma once

#include <cstdint>

#include "platform/database.h"

namespace quillon {

/// Puts a table cursor on the row with this ID; whether there is one.
bool MoveToId(RecordSet& cursor, std::int64_t id);

}  // namespace quillon
