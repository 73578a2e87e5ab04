#include "run/disc_folders.h"

#include <algorithm>
#include <array>
#include <cstddef>

#include "platform/basic_text.h"

namespace quillon {

std::optional<int> DiscOfFolder(std::string_view name) {
    constexpr std::array<std::string_view, 3> Words{"cd", "disc", "disk"};
    constexpr std::string_view Between = " _-", Digits = "0123456789";
    constexpr std::size_t MostDigits = 2;
    const std::string lower = LowerCase(name);
    for (const std::string_view word : Words) {
        if (!lower.starts_with(word)) continue;
        const std::size_t begin = lower.find_first_not_of(Between, word.size());
        if (begin == std::string::npos) continue;
        const std::string digits = lower.substr(begin);
        const bool isNumber = digits.find_first_not_of(Digits) == std::string::npos;
        if (!isNumber || digits.size() > MostDigits) continue;
        const int number = std::stoi(digits);
        if (number > 0) return number;
    }
    return std::nullopt;
}

std::vector<DiscFolder> TakeDiscFolders(std::string_view album, std::vector<std::string>& names) {
    std::vector<DiscFolder> discs;
    std::erase_if(names, [&](const std::string& name) {
        const std::optional<int> disc = DiscOfFolder(name);
        if (disc) discs.push_back({std::string(album).append("\\").append(name), *disc});
        return disc.has_value();
    });
    std::ranges::sort(discs, [](const DiscFolder& left, const DiscFolder& right) {
        if (left.disc != right.disc) return left.disc < right.disc;
        return WindowsNameLess(left.path, right.path);
    });
    return discs;
}

}  // namespace quillon
