#pragma once

#include <string_view>

namespace quillon {

/// Whether a Windows folder can hold an entry of this name: valid UTF-8, at most 255 UTF-16 units,
/// no control characters, none of < > : " / \ | ? *, no dot or blank at its end (which refuses "."
/// and ".." as well). Names of devices such as NUL are ordinary names here: files called so exist
/// on other systems, and no device answers to them.
bool IsWindowsName(std::string_view name);

}  // namespace quillon
