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

  private:
    std::size_t songs_, copies_ = 0;
    outside::TemporaryFolder folder_;
};

/// An empty library that such files are added to. Throws when they are not there afterwards.
class AddingStage {
  public:
    AddingStage(const std::string& program, const NewFiles& files);

    Usage Add() const;

  private:
    std::filesystem::path Music() const { return folder_.Path() / "Music"; }

    std::size_t songs_;
    outside::TemporaryFolder folder_;
    HostFolder host_;
};

}  // namespace quillon::bench
