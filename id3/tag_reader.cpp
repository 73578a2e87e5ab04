#include "id3/tag_reader.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <vector>

#include "id3/tag_record.h"
#include "platform/failure.h"
#include "platform/files.h"
#include "run/run.h"
#include "run/steps.h"

namespace quillon {
namespace {

/// The last bytes of a file. Every read names its place, so that a read that fails does not shift
/// the ones behind it.
class TagBytes {
  public:
    TagBytes(Files& files, const std::string& path)
        : path_(path), stream_(files.OpenBinary(path)), size_(stream_->Size()) {
        if (size_ < TagSize) throw Failure(FailureNumber::InputPastEnd, path_);
    }

    std::vector<std::uint8_t> Read(std::size_t offset, std::size_t count) {
        stream_->SetPosition(size_ - TagSize + offset);
        std::vector<std::uint8_t> bytes = stream_->Read(count);
        if (bytes.size() < count) throw Failure(FailureNumber::InputPastEnd, path_);
        return bytes;
    }

  private:
    std::string path_;
    std::unique_ptr<BinaryReader> stream_;
    std::uint64_t size_;
};

}  // namespace

std::string ReadID3(Run& run, std::string_view path) {
    Steps steps(run, "Read ID3 File Error:");
    FileEntry file;
    if (!steps.Try(2, [&] { file = run.files.GetFile(path); })) return "";
    if (file.size <= TagSize) return "";
    std::unique_ptr<TagBytes> tag;
    if (!steps.Try(3, [&] { tag = std::make_unique<TagBytes>(run.files, file.path); })) return "";
    return TagRecord(
        [&tag](std::size_t offset, std::size_t count) { return tag->Read(offset, count); },
        [&steps](int step, const std::function<void()>& work) { return steps.Try(step, work); },
        [&run](std::uint8_t number) { return run.GenreNames[number]; });
}

}  // namespace quillon
