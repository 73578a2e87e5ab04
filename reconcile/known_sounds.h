#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "library/library.h"
#include "tags/sound_print.h"

namespace quillon {

class Run;

/// What is known of the sound in a track's file.
struct KnownSound {
    FileState file;  ///< when it was read
    SoundPrint print;
    std::optional<std::uint64_t> whole =
        {};  ///< of all its bytes, where another has the same print

    bool operator==(const KnownSound&) const = default;
};

/// The sounds of the library's tracks, which a file beside the database ("<database>.sounds") keeps
/// from run to run. They go with a row, whatever becomes of its path.
class KnownSounds {
  public:
    /// Reads the file; a damaged one is logged and made anew. Failure when it cannot be read.
    KnownSounds(Run& run, Library& library);

    /// Null where nothing is known.
    const KnownSound* Of(const TrackRow& track) const;
    void Set(const TrackRow& track, const KnownSound& sound);

    /// Whether they are other than in the file, but for tracks that have gone.
    bool IsChanged() const { return isChanged_; }
    /// Writes the file, where it would not be the same again. Throws Failure.
    void Save();

  private:
    std::string Path() const;

    Run& run_;
    Library& library_;
    std::vector<std::optional<KnownSound>> sounds_;  ///< by the row's place
    bool isChanged_ = false;
};

/// The path of that file.
std::string KnownSoundsPath(std::string_view database);

}  // namespace quillon
