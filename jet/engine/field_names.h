#pragma once

#include <cstddef>
#include <string_view>
#include <vector>

#include "jet/dialect/translate.h"

namespace jet::engine {

/// The position of a record set's field of this name. A field named "Tracks.Title" is also found
/// as "Title"; of several the first. Error(NotFound) names a field that does not exist.
std::size_t FindField(const std::vector<dialect::ResultColumn>& fields, std::string_view name);

}  // namespace jet::engine
