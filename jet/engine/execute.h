#pragma once

#include <cstdint>
#include <span>
#include <string_view>

#include "jet/engine/session.h"

namespace jet::engine {

/// Runs INSERT, UPDATE or DELETE: selects the rows and their new values, then changes them one by
/// one, all or none. Returns the number of rows selected; 0 for CREATE and DROP.
std::int64_t Execute(Session& session, std::string_view sql,
                     std::span<const NamedValue> parameters = {});

}  // namespace jet::engine
