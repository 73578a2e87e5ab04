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

std::vector<std::uint8_t> PositionedReader::Read(std::size_t count) {
    if (position_ >= size_) return {};
    const auto wanted = static_cast<std::size_t>(std::min<std::uint64_t>(count, size_ - position_));
    const bool isAhead =
        position_ >= aheadFrom_ && position_ + wanted <= aheadFrom_ + ahead_.size();
    if (!isAhead && wanted >= SmallPiece) {
        std::vector<std::uint8_t> piece(wanted);
        piece.resize(file_.ReadAt(position_, piece));
        position_ += piece.size();
        return piece;
    }
    if (!isAhead) ReadAhead(wanted);
    const auto begin = ahead_.begin() + static_cast<std::ptrdiff_t>(position_ - aheadFrom_);
    const auto there = std::min(wanted, static_cast<std::size_t>(ahead_.end() - begin));
    position_ += there;
    return {begin, begin + static_cast<std::ptrdiff_t>(there)};
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
