#include "backups/byte_progress.h"

#include <cstddef>

#include "run/paths.h"

namespace quillon {

ByteProgress::ByteProgress(Run& run, std::span<const BackupOriginal> originals) : run_(run) {
    std::uint64_t total = 0;
    for (const BackupOriginal& original : originals) {
        // A whole drive is refused, and takes long to look through.
        if (!IsDriveRoot(original.path + '\\')) total += SizeOf(run.files, original.path);
    }
    run.StartCounting(static_cast<std::size_t>(total));
    run.files.WatchCopies([this](std::uint64_t bytes) { Add(bytes); });
}

void ByteProgress::Add(std::uint64_t bytes) {
    run_.CountDone(static_cast<std::size_t>(bytes));
    run_.ProcessEvents();
}

}  // namespace quillon
