#pragma once

#include <string>
#include <string_view>

namespace quillon {

/// UTF-8 of a text file that a person has written with whatever program: UTF-16 or UTF-8 where it
/// begins with their byte-order mark, which is dropped; else UTF-8 where the bytes are well-formed
/// so, else ANSI. What is damaged becomes U+FFFD or is read as ANSI; nothing fails.
std::string DecodeText(std::string_view bytes);

}  // namespace quillon
