#pragma once

#include <string_view>

namespace quillon {

/// The media type of a file by the end of its name, whatever its letter case.
std::string_view ContentType(std::string_view name);

/// Whether the file is a server page.
bool IsServerPage(std::string_view name);

}  // namespace quillon
