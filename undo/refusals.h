#pragma once

#include <string>
#include <string_view>

#include "undo/outcome.h"

namespace quillon {

/// Why a file stays as it is.

inline Outcome ChangedSince(std::string_view path) {
    return Outcome::Refusal(std::string(path) + " has been changed since");
}

inline Outcome NotKept(std::string_view path) {
    return Outcome::Refusal("what " + std::string(path) + " was has not been kept");
}

inline Outcome Gone(std::string_view path) {
    return Outcome::Refusal(std::string(path) + " is not there any more");
}

}  // namespace quillon
