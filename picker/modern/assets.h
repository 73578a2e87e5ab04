#pragma once

#include <string>
#include <string_view>

namespace quillon {

/// A file that lies beside the modern pages, "AlbumPicker.css" or "AlbumPicker.js", with the line
/// ends of Windows. std::out_of_range for any other name.
std::string PickerAsset(std::string_view name);

}  // namespace quillon
