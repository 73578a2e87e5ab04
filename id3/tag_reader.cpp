#include "id3/tag_reader.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <utility>
#include <vector>

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

/// A record, as far as it could be read.
struct ReadRecord {
    std::string text;
    bool isWhole = true;
};

ReadRecord ReadRecordOf(Run& run, std::string_view path, const GenreName& genreName) {
    ReadRecord record;
    Steps steps(run, "Read ID3 File Error:");
    steps.Concerning(std::string(path));
    const auto attempt = [&](int step, const std::function<void()>& work) {
        const bool done = steps.Try(step, work);
        record.isWhole &= done;
        return done;
    };
    FileEntry file;
    if (!attempt(2, [&] { file = run.files.GetFile(path); }) || file.size <= TagSize) return record;
    std::unique_ptr<TagBytes> tag;
    if (!attempt(3, [&] { tag = std::make_unique<TagBytes>(run.files, file.path); })) return record;
    record.text = TagRecord(
        [&tag](std::size_t offset, std::size_t count) { return tag->Read(offset, count); }, attempt,
        genreName);
    return record;
}

GenreName NamesOf(const Run& run) {
    return [&run](std::uint8_t number) { return run.GenreNames[number]; };
}

}  // namespace

std::string ReadID3(Run& run, std::string_view path) {
    return ReadRecordOf(run, path, NamesOf(run)).text;
}

std::string ReadID3(Run& run, std::string_view path, const GenreName& genreName) {
    return ReadRecordOf(run, path, genreName).text;
}

std::optional<std::string> ReadWholeID3(Run& run, std::string_view path) {
    return ReadWholeID3(run, path, NamesOf(run));
}

std::optional<std::string> ReadWholeID3(Run& run, std::string_view path,
                                        const GenreName& genreName) {
    ReadRecord record = ReadRecordOf(run, path, genreName);
    if (!record.isWhole) return std::nullopt;
    return std::move(record.text);
}

}  // namespace quillon
