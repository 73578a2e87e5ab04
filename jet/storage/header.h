#pragma once

#include <cstdint>
#include <filesystem>
#include <span>

#include "jet/storage/file_system.h"
#include "jet/storage/format/page.h"

namespace jet::storage {

/// Refuses a file that does not begin like a Jet 4 database that can be read: NotADatabase (empty,
/// something else, an older or newer version, which is named), Encrypted (encoded pages, password),
/// Damaged (cut off within the header, unknown catalog). `start` is its first page, or less where
/// the file is shorter.
void CheckHeader(std::span<const std::uint8_t> start, const std::filesystem::path& path);

/// The same for a file. Folders, FIFOs and devices are NotADatabase, too, and nothing waits for
/// them. `path` is no symbolic link.
void CheckHeaderOf(FileSystem& files, const std::filesystem::path& path);

/// The header of a new database.
Page NewHeader();

}  // namespace jet::storage
