#pragma once

#include <cstddef>

#include "platform/window.h"

/// What the program and the module with the desktop window agree on. The module is a shared library
/// that is loaded only for a run with a window, so that the program itself needs no desktop.
namespace quillon {

/// Opens the display and makes the window, which the caller deletes; nullptr when the module
/// belongs to another build: `version` is the program's, `stateSize` its size of a `FormState`.
/// Ends the process when no display can be opened.
using WindowMaker = Window* (*)(const char* version, std::size_t stateSize);

/// Shows a message until the person has read it. Ends the process when no display can be opened.
using MessageTeller = void (*)(const char* message);

/// The names by which the module exports these.
constexpr const char* WindowMakerName = "QuillonMakeWindow";
constexpr const char* MessageTellerName = "QuillonTellMessage";

}  // namespace quillon
