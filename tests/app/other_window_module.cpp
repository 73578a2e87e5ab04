#include "app/window/window_maker.h"

/// A module whose program is another one: it has no window for this one.
extern "C" quillon::Window* QuillonMakeWindow(const char* /*version*/, std::size_t /*stateSize*/) {
    return nullptr;
}
