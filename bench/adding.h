#pragma once

#include <cstddef>
#include <filesystem>
#include <string>

#include "bench/host_folder.h"
#include "tests/outside/temporary_folder.h"

namespace quillon::bench {

/// Tagged files of 32 KB in album folders of artist folders, and a picture in each album's.
class NewFiles {
  public:
    explicit NewFiles(std::size_t songs);

    std::size_t Songs() const { return songs_; }
    std::filesystem::path Root() const { return folder_.Path() / "New"; }

    enum class Way {
        Plain,  ///< as fast as the system will
        Safe,   ///< each file is on the disk before it gets its name, and its folder after that
    };
    /// Copies the tree to a folder that goes with this object.
    double SecondsOfCopy(Way way);

    /// An empty folder beside the copies, that what is put into it finds the file system as they
    /// did: how dear a new file is depends on what was removed near it minutes before.
    std::filesystem::path MakeFolder();

  private:
    std::size_t songs_, folders_ = 0;
    outside::TemporaryFolder folder_;
};

/// An empty library that such files are added to, which must outlive this object. Throws when they
/// are not there afterwards.
class AddingStage {
  public:
    AddingStage(const std::string& program, NewFiles& files);

    Usage Add() const;

  private:
    std::size_t songs_;
    std::filesystem::path music_;
    HostFolder host_;
};

}  // namespace quillon::bench
