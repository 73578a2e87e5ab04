#pragma once

#include <string_view>

#include "platform/files.h"

namespace quillon {

/// Whether two files hold the same sound: the same bytes between the tags at their beginning (ID3
/// version 2) and those at their end (ID3 version 1, APE). The files are read in pieces. Failure
/// when one cannot be read.
bool HaveSameSound(Files& files, std::string_view path, std::string_view other);

}  // namespace quillon
