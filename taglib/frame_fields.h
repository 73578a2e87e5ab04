#pragma once

#include <string>
#include <string_view>

#include "tags/tag.h"

namespace quillon {

/// The field that a frame of this name, of whatever version, tells; null for any other frame.
std::string Tag::* FieldOfFrame(std::string_view name);

}  // namespace quillon
