#pragma once

#include <commctrl.h>

#include "platform/windows/system_headers.h"

namespace quillon {

/// A function of the system's common controls. Their library is loaded when it is first asked for,
/// since it asks for the desktop at once, which a run without a window has no use for.
template <typename Function>
Function* CommonControlFunction(const char* name) {
    HMODULE const library = LoadLibraryW(L"comctl32.dll");
    return reinterpret_cast<Function*>(reinterpret_cast<void*>(GetProcAddress(library, name)));
}

}  // namespace quillon
