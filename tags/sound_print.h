#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "platform/files.h"

namespace quillon {

/// What a sound is recognised by, whatever its file is called and whatever its tags say.
struct SoundPrint {
    std::uint64_t size = 0;     ///< bytes between the tags; 0: no sound, which tells nothing
    std::uint64_t samples = 0;  ///< of that size and of a few pieces of the sound

    bool operator==(const SoundPrint&) const = default;
};

/// A file as a listing shows it. While that stays the same, so does the sound in it.
struct FileState {
    std::uint64_t size = 0;
    std::int64_t time = 0;  ///< last modified, in seconds

    bool operator==(const FileState&) const = default;
};

FileState StateOf(std::uint64_t size, DateTime modified);

/// Reads a few pieces of the file. Nothing where it has not (or no longer) the state that it was
/// listed with: somebody is writing it. Throws Failure when it cannot be read.
std::optional<SoundPrint> ReadSoundPrint(Files& files, const std::string& path,
                                         const FileState& state);

/// The same of a file that is open already.
std::optional<SoundPrint> ReadSoundPrint(Files& files, BinaryReader& stream,
                                         const std::string& path, const FileState& state);

/// Of all bytes of the sound. Nothing and Failure as above.
std::optional<std::uint64_t> ReadWholeSound(Files& files, const std::string& path,
                                            const FileState& state);

}  // namespace quillon
