#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "changes/change.h"
#include "platform/files.h"

namespace quillon {

/// The bytes of a file from a position on, as many as there are up to this number. Failure: as of
/// `Files::OpenBinary`.
std::string BytesOf(Files& files, std::string_view path, std::uint64_t position = 0,
                    std::uint64_t most = UINT64_MAX);

/// Whether there is a file of that path with this content, as far as that is known: its bytes, or
/// their hash; of a file whose bytes were not looked at its size and time.
bool Holds(Files& files, std::string_view path, const FileContent& content);

}  // namespace quillon
