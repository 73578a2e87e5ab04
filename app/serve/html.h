#pragma once

#include <string>
#include <string_view>

namespace quillon {

/// Text as it may stand anywhere in a page, in its elements and in quoted attributes. It is plain
/// ASCII, so that it means the same in a page of any encoding; control characters become blanks and
/// bytes that are no UTF-8 are read as ANSI.
std::string EscapeHtml(std::string_view text);

}  // namespace quillon
