#pragma once

#include <cstdint>
#include <span>

#include "platform/files.h"
#include "platform/portable/file_handle.h"

namespace quillon {

/// Files::WriteEnd on a file that is open for reading and writing.
void WriteFileEnd(const FileHandle& file, const FileEnd& seen, std::uint64_t position,
                  std::span<const std::uint8_t> bytes);

}  // namespace quillon
