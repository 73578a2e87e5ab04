#pragma once

#include <span>
#include <string>

#include "platform/files.h"
#include "run/left_out.h"

namespace quillon {

/// Parts the artist from the title in a file's name of the flat layout.
constexpr char FlatSeparator = '_';

/// Counts the music that the library's layout has no place for, while a walk goes past it. It goes
/// by names that the walk has at hand; only folders below albums are listed for it.
class LeftOutMusic {
  public:
    LeftOutMusic(Files& files, LeftOut& found) : files_(files), found_(found) {}

    /// Files of any kind that lie where no album is, by their names.
    void NoteLoose(const std::string& folder, std::span<const std::string> names);

    /// A file of an album that is no song of the library.
    void NoteOther(const std::string& folder, const std::string& name);

    /// A file in a library folder of the flat layout.
    void NoteFlat(const std::string& folder, const std::string& name);

    /// Folders where no folder belongs, by their names, with all that is below them.
    void NoteDeeper(const std::string& folder, std::span<const std::string> names);

  private:
    void Descend(const std::string& folder, int depth);

    Files& files_;
    LeftOut& found_;
};

}  // namespace quillon
