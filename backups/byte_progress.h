#pragma once

#include <cstdint>
#include <span>

#include "backups/backup_list.h"
#include "run/run.h"

namespace quillon {

/// While this object lives, the phase, or the share of it that was started, counts bytes: those
/// that are copied, and those that Add() is told of. The total is the size of what is backed up.
class ByteProgress {
  public:
    ByteProgress(Run& run, std::span<const BackupOriginal> originals);
    ByteProgress(const ByteProgress&) = delete;
    ByteProgress& operator=(const ByteProgress&) = delete;
    ~ByteProgress() { run_.files.WatchCopies({}); }

    void Add(std::uint64_t bytes);

  private:
    Run& run_;
};

}  // namespace quillon
