#include "picker/modern/assets.h"

#include <algorithm>
#include <array>
#include <stdexcept>
#include <utility>

#include "picker/html.h"
#include "platform/basic_text.h"

namespace quillon {
namespace {

constexpr auto Assets = std::to_array<std::pair<std::string_view, std::string_view>>({
#include "picker/modern/asset_rows.inc"
});

}  // namespace

std::string PickerAsset(std::string_view name) {
    const auto* const found =
        std::ranges::find(Assets, name, [](const auto& asset) { return asset.first; });
    if (found == Assets.end()) throw std::out_of_range(std::string(name));
    return Replace(found->second, "\n", Eol);
}

}  // namespace quillon
