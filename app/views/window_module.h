#pragma once

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "platform/window.h"

namespace quillon {

/// A desktop window, or the reason why there is none.
struct WindowOffer {
    std::unique_ptr<Window> window;
    std::string whyNot;  ///< for the person who asked for it, one line; "" beside a window
};

/// Where the module with the window may lie: beside this program, or where an installation has it.
std::vector<std::filesystem::path> WindowModulePlaces();

/// Loads the module from the first of these places that has it, makes sure that a display can be
/// opened, and opens the window's. Whatever is in the way is returned as a text; nothing is thrown.
WindowOffer OpenWindow(const std::vector<std::filesystem::path>& places = WindowModulePlaces());

/// Shows a message on the desktop until it has been read. Where there is no module or no display,
/// nothing happens.
void TellOnDesktop(const std::string& message,
                   const std::vector<std::filesystem::path>& places = WindowModulePlaces());

}  // namespace quillon
