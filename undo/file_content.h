#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "changes/change.h"
#include "platform/files.h"

namespace quillon {

/// All bytes of a file. Failure: as of `Files::OpenBinary`.
std::string BytesOf(Files& files, std::string_view path);

/// Whether there is a file of that path with this content, as far as that is known: its bytes, or
/// their hash; of a file whose bytes were not looked at its size and time.
bool Holds(Files& files, std::string_view path, const FileContent& content);

}  // namespace quillon
