#pragma once

#include <string>
#include <string_view>

namespace quillon {

/// A value of a connection string between quotes, so that it may hold semicolons; quotes of that
/// kind in it are doubled.
std::string QuotedConnectionValue(std::string_view value, char quote);

}  // namespace quillon
