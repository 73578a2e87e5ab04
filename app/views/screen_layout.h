#pragma once

#include <chrono>
#include <cstddef>
#include <deque>
#include <string>
#include <vector>

#include "platform/window.h"

namespace quillon {

/// How a piece of the screen stands out.
enum class ScreenStyle { Usual, Strong, Faint, Progress, Error };

/// A piece of a line that looks the same throughout.
struct ScreenSpan {
    std::string text;
    ScreenStyle style = ScreenStyle::Usual;
};

/// One line of the terminal screen; never wider than the screen it was laid out for.
using ScreenLine = std::vector<ScreenSpan>;

/// The size of a terminal in characters.
struct ScreenSize {
    std::size_t columns = 0;
    std::size_t rows = 0;

    bool operator==(const ScreenSize&) const = default;
};

/// A record of the log, fit for one line.
struct ShownRecord {
    LogKind kind = LogKind::Information;
    std::string text;
};

/// What a screen tells beside the form itself.
struct ScreenRemarks {
    std::chrono::seconds elapsed{};
    bool aborting = false;  ///< the wish to abort has arrived
    std::size_t errors = 0;
    std::deque<ShownRecord> records{};  ///< the latest ones of the log, oldest first
};

/// The form as lines of a terminal screen, from the top; at most as many as the screen has. Where
/// not all phases fit, those around the selected one are shown; the smallest screens lose the head
/// and the foot before the item and the error. Room that is left shows the latest records of the
/// log: below the form on a high screen, beside it on a wide one.
std::vector<ScreenLine> LayOutScreen(const FormState& form, const ScreenRemarks& remarks,
                                     ScreenSize size);

}  // namespace quillon
