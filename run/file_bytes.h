#pragma once

#include <string_view>

namespace quillon {

class Files;

/// Whether the file holds just these bytes. False when there is no such file; Failure when it
/// cannot be read.
bool HoldsJust(Files& files, std::string_view path, std::string_view bytes);

}  // namespace quillon
