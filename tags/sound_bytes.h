#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "platform/files.h"

namespace quillon {

/// The sound of a file: what lies between the tags at its beginning (ID3 version 2) and those at
/// its end (ID3 version 1, APE). Throws Failure when the file cannot be read.
class SoundBytes {
  public:
    SoundBytes(Files& files, std::string_view path);
    /// Of a file that is open already; `stream` must outlive this object.
    SoundBytes(BinaryReader& stream, std::string_view path);

    /// In bytes; so is the next.
    std::uint64_t Size() const { return end_ - begin_; }
    std::uint64_t FileSize() const { return fileSize_; }

    /// Failure: InputPastEnd when the file has become shorter.
    std::vector<std::uint8_t> Read(std::uint64_t offset, std::size_t count);

  private:
    void FindSound();
    std::vector<std::uint8_t> At(std::uint64_t position, std::size_t count);
    void LeaveOutBeginning();
    void LeaveOutTag();
    void LeaveOutApe();

    std::string path_;
    std::unique_ptr<BinaryReader> opened_;
    BinaryReader* stream_;
    std::uint64_t fileSize_, begin_ = 0, end_;
};

}  // namespace quillon
