#pragma once

#include <string_view>

#include "platform/files.h"

namespace quillon {

/// Whether two files have the same bytes. They are read only where they are of one size; `watch` is
/// told of what has been read of the left one. Throws Failure.
bool HaveSameBytes(Files& files, std::string_view left, std::string_view right,
                   const BytesWatch& watch = {});

/// Whether two folders hold files and folders of the same names with the same bytes. Files are read
/// only where all names and sizes agree; what cannot be looked at is different. Throws Failure.
bool HoldTheSame(Files& files, std::string_view left, std::string_view right,
                 const BytesWatch& watch = {});

}  // namespace quillon
