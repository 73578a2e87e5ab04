#pragma once

#include <cstdint>
#include <optional>
#include <string_view>
#include <unordered_map>

#include "tags/sound_print.h"

namespace quillon {

/// The sounds of files that a run had open for their tags, so that they need not be opened again.
class HeardSounds {
  public:
    void Note(std::string_view path, const FileState& file, const SoundPrint& print);

    /// Nothing where the file has not been heard in this state.
    std::optional<SoundPrint> Find(std::string_view path, const FileState& file) const;

  private:
    struct Heard {
        FileState file;
        SoundPrint print;
    };
    std::unordered_map<std::uint64_t, Heard> sounds_;  ///< by the hash of the path
};

}  // namespace quillon
