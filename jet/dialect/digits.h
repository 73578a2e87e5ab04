#pragma once

namespace jet::dialect {

/// The digits of SQL and of dates: ASCII alone, whatever the locale.
inline bool IsDigit(char c) {
    return c >= '0' && c <= '9';
}

}  // namespace jet::dialect
