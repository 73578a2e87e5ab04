#pragma once

#include <chrono>
#include <functional>
#include <string>

namespace quillon {

/// How long a display may take to answer; one on the other end of a slow line needs seconds.
constexpr std::chrono::milliseconds DisplayPatience{10000};

/// Why no window can be opened on the display that the environment names; "" when one can. Tries
/// `open` in a separate process, because it may end its process or hang when it fails. To be
/// called while this process has one thread.
std::string WhyNoDisplay(const std::function<void()>& open,
                         std::chrono::milliseconds patience = DisplayPatience);

}  // namespace quillon
