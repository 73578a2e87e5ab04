#pragma once

#include <chrono>
#include <cstddef>
#include <string>
#include <vector>

#include "platform/window.h"

namespace quillon {

/// One line of the terminal screen; never wider than the screen it was laid out for.
struct ScreenLine {
    std::string text;
    bool emphasized = false;
};

/// The size of a terminal in characters.
struct ScreenSize {
    std::size_t columns = 0;
    std::size_t rows = 0;
};

/// The form as lines of a terminal screen, from the top; at most as many as the screen has. Where
/// not all phases fit, those around the selected one are shown; the smallest screens lose the head
/// and the foot before the item and the error.
std::vector<ScreenLine> LayOutScreen(const FormState& state, std::chrono::seconds elapsed,
                                     bool abortPressed, ScreenSize size);

}  // namespace quillon
