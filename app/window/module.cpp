#include <QtGlobal>
#include <cstddef>
#include <memory>
#include <string_view>

#include "app/version.h"
#include "app/window/desktop_window.h"
#include "app/window/window_maker.h"

extern "C" Q_DECL_EXPORT quillon::Window* QuillonMakeWindow(const char* version,
                                                            std::size_t stateSize) {
    if (version != quillon::ProgramVersion || stateSize != sizeof(quillon::FormState))
        return nullptr;
    return std::make_unique<quillon::DesktopWindow>().release();
}
