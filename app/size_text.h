#pragma once

#include <cstdint>
#include <string>

namespace quillon {

/// "17 bytes", "184 KB", "1.2 GB"
std::string SizeText(std::uintmax_t bytes);

}  // namespace quillon
