#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "jet/value.h"

namespace jet {

/// "{00112233-4455-6677-8899-AABBCCDDEEFF}"
std::string GuidText(const Guid& guid);
/// Reads it back, with or without braces, in either letter case.
std::optional<Guid> ParseGuid(std::string_view text);

}  // namespace jet
