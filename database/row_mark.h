#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "database/snapshot_file.h"
#include "library/rows.h"
#include "platform/basic_text.h"
#include "run/paths.h"

namespace quillon {

/// What a track's row is recognised by beside its key, which may be another row's in a database
/// that was replaced. The drive of a stored path does not count, since it may get another one.
struct RowMark {
    std::uint32_t path = 0;   ///< of its sound file
    std::uint32_t added = 0;  ///< of the date when the row was made; 0: it has none

    /// Whether both may be marks of one row. Its file may have been renamed.
    bool Fits(const RowMark& other) const {
        return path == other.path || (added != 0 && added == other.added);
    }
    bool operator==(const RowMark&) const = default;
};

inline RowMark MarkOf(const TrackRow& track) {
    std::string_view path = track.soundFile;
    path.remove_prefix(GetDrive(path).size());
    const bool hasDate = track.added && track.added->days != 0;
    return {.path = Fingerprint(UpperCase(path)),
            .added = hasDate ? Fingerprint(std::to_string(track.added->days)) : 0};
}

}  // namespace quillon
