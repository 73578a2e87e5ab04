#pragma once

#include <functional>
#include <string>

namespace quillon {

/// Why no window can be opened on the display that the environment names; "" when one can. Tries
/// `open` in a process of its own, because it may end its process or hang when it fails. To be
/// called while this process has one thread.
std::string WhyNoDisplay(const std::function<void()>& open);

}  // namespace quillon
