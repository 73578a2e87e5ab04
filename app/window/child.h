#pragma once

#include <memory>
#include <utility>

namespace quillon {

/// Makes a widget, or a layout, that belongs to the widget it is put into and goes with it.
template <typename Made, typename... Arguments>
Made* MakeChild(Arguments&&... arguments) {
    return std::make_unique<Made>(std::forward<Arguments>(arguments)...).release();
}

}  // namespace quillon
