#pragma once

#include <string>

namespace quillon {

/// How the pages look: the grids keep their columns where the window is wide enough and flow into
/// fewer ones, down to one, where it is not.
std::string PickerStylesheet();

}  // namespace quillon
