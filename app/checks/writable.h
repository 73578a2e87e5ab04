#pragma once

#include <filesystem>

namespace quillon {

/// Whether this account may write the file, or make and remove entries of the folder, which must
/// exist. Nothing is tried out.
bool IsWritable(const std::filesystem::path& path);

}  // namespace quillon
