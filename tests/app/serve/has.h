#pragma once

#include <string>

namespace quillon {

/// Whether a page contains this text.
inline bool Has(const std::string& text, const std::string& part) {
    return text.find(part) != std::string::npos;
}

}  // namespace quillon
