#pragma once

#include <cstdint>
#include <span>
#include <string>

#include "platform/files.h"
#include "platform/portable/file_handle.h"

namespace quillon {

/// Files::WriteEnd on a file that is open for reading and writing.
void WriteFileEnd(const FileHandle& file, const FileEnd& seen, std::uint64_t position,
                  std::span<const std::uint8_t> bytes);

/// Files::ReplaceBytes with as many bytes on a file that is open for reading and writing.
void ReplaceInPlace(const FileHandle& file, const FilePiece& seen,
                    std::span<const std::uint8_t> bytes);

/// The same with more or fewer bytes: the file, open for reading, is written anew as `local`.
void ReplaceByCopy(FileHandle file, const std::string& local, const FilePiece& seen,
                   std::span<const std::uint8_t> bytes);

}  // namespace quillon
