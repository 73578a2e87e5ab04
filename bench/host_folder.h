#pragma once

#include <filesystem>
#include <string>
#include <string_view>

#include "bench/child_process.h"
#include "bench/music_library.h"
#include "tests/outside/temporary_folder.h"

namespace quillon::bench {

/// A library of music in a folder of its own, for as many host folders as there are.
class MusicTree {
  public:
    MusicTree(std::size_t tracks, FileNames names, std::size_t tracksAnAlbum = VariedAlbums);

    std::size_t Tracks() const { return tracks_; }
    std::filesystem::path Root() const { return folder_.Path() / "Music"; }

    /// Processor time of a bare walk over the files. Throws when there are more or fewer.
    double SecondsOfWalk() const;

  private:
    std::size_t tracks_;
    outside::TemporaryFolder folder_;
};

/// A host folder as `quillon init` makes it, with an empty database; rows do not follow moved
/// files.
class HostFolder {
  public:
    HostFolder(std::string program, const std::filesystem::path& music);

    std::filesystem::path Path() const { return folder_.Path() / "host"; }
    std::filesystem::path Database() const { return Path() / "jukebox.mdb"; }

    void Set(std::string_view key, std::string_view value) const;
    /// Which kinds of tags are read and written, as host.ini says it.
    void SetTags(std::string_view read, std::string_view write) const;
    /// An image for each album of the music.
    void AddCovers(const std::filesystem::path& music) const;

    /// One run, shown in this view. Throws when it does not end with 0. What it leaves for people
    /// goes: dated copies would fill the disk.
    Usage Run(const Surroundings& surroundings = {}, const std::string& view = "plain") const;

    /// What a run would do now. Throws when that cannot be found out.
    Usage Preview() const;

  private:
    /// Replaces what stands in a file of the host folder between a line's beginning and its end.
    void Replace(std::string_view file, std::string_view begin, std::string_view value) const;

    std::string program_;
    outside::TemporaryFolder folder_;
};

}  // namespace quillon::bench
