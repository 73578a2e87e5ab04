#include "id3/same_sound.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "platform/basic_text.h"
#include "platform/failure.h"
#include "tags/tag.h"

namespace quillon {
namespace {

constexpr std::size_t PieceSize = std::size_t{64} * 1024;

/// A file and where its sound lies.
class Sound {
  public:
    Sound(Files& files, std::string_view path)
        : path_(path), stream_(files.OpenBinary(path)), end_(stream_->Size()) {
        LeaveOutBeginning();
        LeaveOutTag();
        LeaveOutApe();
    }

    std::uint64_t Size() const { return end_ - begin_; }

    std::vector<std::uint8_t> Read(std::uint64_t offset, std::size_t count) {
        stream_->SetPosition(begin_ + offset);
        std::vector<std::uint8_t> bytes = stream_->Read(count);
        if (bytes.size() < count) throw Failure(FailureNumber::InputPastEnd, path_);
        return bytes;
    }

  private:
    /// Bytes at a place of the whole file; none where it has not so many.
    std::vector<std::uint8_t> At(std::uint64_t position, std::size_t count) {
        if (position < begin_ || position + count > end_) return {};
        return Read(position - begin_, count);
    }

    static bool Reads(const std::vector<std::uint8_t>& bytes, std::string_view text) {
        return bytes.size() >= text.size() && std::equal(text.begin(), text.end(), bytes.begin());
    }

    /// The size of a version 2 tag has seven bits a byte and leaves its header out, and its footer.
    void LeaveOutBeginning() {
        constexpr std::size_t HeaderSize = 10, FlagsAt = 5, SizeAt = 6;
        constexpr std::uint8_t HasFooter = 0x10;
        const std::vector<std::uint8_t> header = At(0, HeaderSize);
        if (!Reads(header, "ID3")) return;
        std::uint64_t size = HeaderSize;
        std::uint64_t body = 0;
        for (std::size_t i = SizeAt; i < HeaderSize; ++i)
            body = (body << 7U) | (header[i] & 0x7FU);
        size += body;
        if ((header[FlagsAt] & HasFooter) != 0) size += HeaderSize;
        if (size <= end_) begin_ = size;
    }

    void LeaveOutTag() {
        if (Size() < TagSize) return;
        const std::vector<std::uint8_t> marker = At(end_ - TagSize, 3);
        if (UpperCase(std::string(marker.begin(), marker.end())) == "TAG") end_ -= TagSize;
    }

    /// The size of an APE tag, lowest byte first, includes its footer but not its header.
    void LeaveOutApe() {
        constexpr std::size_t FooterSize = 32, SizeAt = 12, FlagsAt = 23;
        constexpr std::uint8_t HasHeader = 0x80;
        if (Size() < FooterSize) return;
        const std::vector<std::uint8_t> footer = At(end_ - FooterSize, FooterSize);
        if (!Reads(footer, "APETAGEX")) return;
        std::uint64_t size = 0;
        for (std::size_t i = 4; i-- > 0;)
            size = (size << 8U) | footer[SizeAt + i];
        if ((footer[FlagsAt] & HasHeader) != 0) size += FooterSize;
        if (size >= FooterSize && size <= Size()) end_ -= size;
    }

    std::string path_;
    std::unique_ptr<BinaryReader> stream_;
    std::uint64_t begin_ = 0, end_ = 0;
};

}  // namespace

bool HaveSameSound(Files& files, std::string_view path, std::string_view other) {
    Sound first(files, path), second(files, other);
    if (first.Size() != second.Size()) return false;
    for (std::uint64_t offset = 0; offset < first.Size(); offset += PieceSize) {
        const auto count =
            static_cast<std::size_t>(std::min<std::uint64_t>(PieceSize, first.Size() - offset));
        if (first.Read(offset, count) != second.Read(offset, count)) return false;
    }
    return true;
}

}  // namespace quillon
