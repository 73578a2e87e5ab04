#include "platform/portable/streams.h"

#include <algorithm>

#include "platform/ansi.h"
#include "platform/failure.h"
#include "platform/portable/local_time.h"

namespace quillon {
namespace {

constexpr std::size_t BufferSize = 65536;
/// Pieces of this size and above are not read ahead.
constexpr std::uint64_t SmallPiece = 512;

}  // namespace

AnsiTextWriter::AnsiTextWriter(const std::string& target, std::string_view shownPath,
                               SafeFile::Existing existing, std::function<void()> closing,
                               std::function<void()> closed)
    : shownPath_(shownPath),
      file_(target, shownPath, existing),
      closing_(std::move(closing)),
      closed_(std::move(closed)) {}

void AnsiTextWriter::Write(std::string_view text) {
    WriteBytes(Utf8ToAnsi(text));
}

void AnsiTextWriter::WriteBytes(std::string_view bytes) {
    if (!open_) throw Failure(FailureNumber::BadFileName, shownPath_);
    buffer_ += bytes;
    if (buffer_.size() < BufferSize) return;
    file_.Write(buffer_);
    buffer_.clear();
}

void AnsiTextWriter::WriteLine(std::string_view line) {
    Write(line);
    Write("\r\n");
}

void AnsiTextWriter::Close() {
    CloseIf([] { return true; });
}

bool AnsiTextWriter::CloseIf(const std::function<bool()>& isWanted) {
    if (!open_) return true;
    open_ = false;
    file_.Write(buffer_);
    if (modified_) file_.SetModified({LocalTime().MomentOf(*modified_), 0});
    // Waiting for the disk takes longest, so the question is asked after that.
    file_.Sync();
    if (!isWanted()) return false;
    closing_();
    file_.Commit();
    closed_();
    return true;
}

std::size_t PositionedReader::ReadInto(std::span<std::uint8_t> bytes) {
    if (position_ >= size_) return 0;
    const auto wanted =
        static_cast<std::size_t>(std::min<std::uint64_t>(bytes.size(), size_ - position_));
    bytes = bytes.first(wanted);
    const bool isAhead =
        position_ >= aheadFrom_ && position_ + wanted <= aheadFrom_ + ahead_.size();
    if (!isAhead && wanted >= SmallPiece) {
        const std::size_t there = file_.ReadAt(position_, bytes);
        position_ += there;
        return there;
    }
    if (!isAhead) ReadAhead(wanted);
    const auto ahead = std::span(ahead_).subspan(static_cast<std::size_t>(position_ - aheadFrom_));
    const std::size_t there = std::min(wanted, ahead.size());
    std::ranges::copy(ahead.first(there), bytes.begin());
    position_ += there;
    return there;
}

void PositionedReader::ReadAhead(std::size_t count) {
    ahead_.resize(static_cast<std::size_t>(
        std::max<std::uint64_t>(count, std::min(SmallPiece, size_ - position_))));
    aheadFrom_ = position_;
    std::size_t there = 0;
    try {
        there = file_.ReadAt(position_, ahead_);
    } catch (...) {
        ahead_.clear();
        throw;
    }
    ahead_.resize(there);
}

}  // namespace quillon
