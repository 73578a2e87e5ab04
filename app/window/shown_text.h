#pragma once

#include <QString>
#include <string_view>

#include "app/text/display_text.h"

namespace quillon {

/// A text from outside as a window may show it: on one line, without control characters.
inline QString Shown(std::string_view text) {
    return QString::fromStdString(OneLine(text));
}

/// The same for controls that would take an ampersand for the mark of a shortcut key.
inline QString Caption(std::string_view text) {
    return Shown(text).replace('&', "&&");
}

}  // namespace quillon
