#pragma once

#include <cstdint>
#include <span>
#include <string_view>

#include "jet/engine/session.h"

namespace jet::engine {

/// Runs INSERT, UPDATE or DELETE: first the rows and new values are selected, then changed one by
/// one, all or none. The number of rows selected. CREATE and DROP concern none.
std::int64_t Execute(Session& session, std::string_view sql,
                     std::span<const NamedValue> parameters = {});

}  // namespace jet::engine
