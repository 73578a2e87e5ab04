#pragma once

#include <charconv>
#include <cstddef>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace quillon::bench {

/// The sizes that a program's command line names, `usual` when it names none. Throws with `usage`
/// for anything else.
inline std::vector<std::size_t> SizesFrom(std::span<char*> arguments, const std::string& usage,
                                          std::vector<std::size_t> usual) {
    std::vector<std::size_t> sizes;
    for (const std::string_view argument : arguments.subspan(1)) {
        std::size_t size = 0;
        const auto [end, error] =
            std::from_chars(argument.data(), argument.data() + argument.size(), size);
        if (error != std::errc() || end != argument.data() + argument.size() || size == 0)
            throw std::invalid_argument("usage: " + usage);
        sizes.push_back(size);
    }
    return sizes.empty() ? std::move(usual) : sizes;
}

}  // namespace quillon::bench
