#pragma once

#include <memory>
#include <string>

#include "app/views/view.h"

namespace quillon {

/// The view on the terminal that standard input and output are; nullptr where it can show no
/// screen, and `whyNot` may say more about that.
std::unique_ptr<View> MakeTerminalScreen(std::string& whyNot);

}  // namespace quillon
