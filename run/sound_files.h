#pragma once

#include <string_view>

namespace quillon {

/// Whether the name's last four characters are ".mp3" in any letter case.
bool IsSoundFile(std::string_view name);

}  // namespace quillon
