#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "jet/error.h"

namespace jet::dialect {

/// "Syntax error at column 17 near 'x': a closing parenthesis is missing". `place` counts from 0.
inline Error SyntaxError(std::size_t place, std::string_view near, const std::string& fault) {
    const std::string where =
        near.empty() ? " at the end" : " near '" + std::string(near.substr(0, 40)) + "'";
    return {ErrorKind::Syntax,
            "Syntax error at column " + std::to_string(place + 1) + where + ": " + fault};
}

}  // namespace jet::dialect
