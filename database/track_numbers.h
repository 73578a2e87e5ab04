#pragma once

#include <cstdint>
#include <string_view>
#include <unordered_set>

#include "platform/database.h"

namespace quillon {

/// Makes the numbers of some tracks of one album differ from those of its other tracks and from
/// each other: a number that is above 0 and free stays, any other becomes the lowest free one.
/// `tracks` is a cursor over the table.
void NumberApart(Connection& connection, RecordSet& tracks, std::string_view cdjid,
                 const std::unordered_set<std::int64_t>& newcomers);

/// Puts a table cursor on the row with this ID; whether there is one.
bool MoveToId(RecordSet& cursor, std::int64_t id);

}  // namespace quillon
