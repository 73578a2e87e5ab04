#pragma once

#include <array>
#include <string>

#include "run/settings.h"

namespace quillon {

/// A file or folder that a mode makes a dated copy of before it starts.
struct BackedUp {
    std::string Settings::* path;
    bool isFolder = true;
};

/// All that any mode backs up.
inline constexpr std::array<BackedUp, 3> EverythingBackedUp{
    {{&Settings::Nirvis_CDJ_DB, false}, {&Settings::PlayListPath}, {&Settings::PlayListPath2}}};

}  // namespace quillon
