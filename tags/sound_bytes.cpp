#include "tags/sound_bytes.h"

#include <algorithm>

#include "platform/basic_text.h"
#include "platform/failure.h"
#include "tags/tag.h"

namespace quillon {
namespace {

bool Reads(const std::vector<std::uint8_t>& bytes, std::string_view text) {
    return bytes.size() >= text.size() && std::equal(text.begin(), text.end(), bytes.begin());
}

}  // namespace

SoundBytes::SoundBytes(Files& files, std::string_view path)
    : path_(path),
      opened_(files.OpenBinary(path)),
      stream_(opened_.get()),
      fileSize_(stream_->Size()),
      end_(fileSize_) {
    FindSound();
}

SoundBytes::SoundBytes(BinaryReader& stream, std::string_view path)
    : path_(path), stream_(&stream), fileSize_(stream.Size()), end_(fileSize_) {
    FindSound();
}

void SoundBytes::FindSound() {
    LeaveOutBeginning();
    LeaveOutTag();
    LeaveOutApe();
}

std::vector<std::uint8_t> SoundBytes::Read(std::uint64_t offset, std::size_t count) {
    stream_->SetPosition(begin_ + offset);
    std::vector<std::uint8_t> bytes = stream_->Read(count);
    if (bytes.size() < count) throw Failure(FailureNumber::InputPastEnd, path_);
    return bytes;
}

/// Bytes at a place of the whole file; none where it has not so many.
std::vector<std::uint8_t> SoundBytes::At(std::uint64_t position, std::size_t count) {
    if (position < begin_ || position + count > end_) return {};
    return Read(position - begin_, count);
}

/// The size of a version 2 tag has seven bits a byte and leaves its header out, and its footer.
void SoundBytes::LeaveOutBeginning() {
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

void SoundBytes::LeaveOutTag() {
    if (Size() < TagSize) return;
    const std::vector<std::uint8_t> marker = At(end_ - TagSize, 3);
    if (UpperCase(std::string(marker.begin(), marker.end())) == "TAG") end_ -= TagSize;
}

/// The size of an APE tag, lowest byte first, includes its footer but not its header.
void SoundBytes::LeaveOutApe() {
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

}  // namespace quillon
