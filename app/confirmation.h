#pragma once

#include <iosfwd>
#include <string_view>

namespace quillon {

/// Asks a person to go on: true for an answer that begins with "y", in either letter case. Whatever
/// else is said, and the end of the input, is a no.
bool IsConfirmed(std::string_view question, std::istream& in, std::ostream& out);

}  // namespace quillon
