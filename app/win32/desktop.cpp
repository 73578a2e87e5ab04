#include "app/views/window_module.h"
#include "app/win32/win32_window.h"
#include "platform/windows/wide_text.h"

namespace quillon {

/// The window is a part of the program here.
std::vector<std::filesystem::path> WindowModulePlaces() {
    return {};
}

WindowOffer OpenWindow(const std::vector<std::filesystem::path>& /*places*/) {
    USEROBJECTFLAGS flags{};
    const bool isKnown = GetUserObjectInformationW(GetProcessWindowStation(), UOI_FLAGS, &flags,
                                                   sizeof flags, nullptr) != 0;
    if (isKnown && (flags.dwFlags & WSF_VISIBLE) == 0)
        return {nullptr, "this process has no desktop that anybody sees"};
    return {std::make_unique<Win32Window>(), ""};
}

void TellOnDesktop(const std::string& message,
                   const std::vector<std::filesystem::path>& /*places*/) {
    MessageBoxW(nullptr, Shown(message).c_str(), L"Quillon Shelfkeeper",
                MB_OK | MB_ICONWARNING | MB_SETFOREGROUND);
}

}  // namespace quillon
