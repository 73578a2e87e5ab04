#pragma once

#include <memory>

#include "jet/storage/file_system.h"

namespace jet::storage {

/// Files over others which are only ever read: what is written, renamed and removed stays in
/// memory, where it can be read again, and is gone with this object. What the file system would
/// refuse to open for writing is refused. Locks are always granted and mean nothing.
std::shared_ptr<FileSystem> ScratchFiles(std::shared_ptr<FileSystem> ground);

}  // namespace jet::storage
