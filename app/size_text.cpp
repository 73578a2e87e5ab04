#include "app/size_text.h"

#include <array>
#include <cstddef>
#include <fmt/format.h>
#include <string_view>

namespace quillon {

std::string SizeText(std::uintmax_t bytes) {
    constexpr std::array<std::string_view, 5> Units{"KB", "MB", "GB", "TB", "PB"};
    constexpr double Step = 1024;
    if (bytes < 1024) return fmt::format("{} bytes", bytes);
    double size = static_cast<double>(bytes) / Step;
    std::size_t unit = 0;
    for (; size >= Step && unit + 1 < Units.size(); ++unit)
        size /= Step;
    return fmt::format("{:.{}f} {}", size, size < 10 ? 1 : 0, Units[unit]);
}

}  // namespace quillon
