#include "platform/ansi_text_reader.h"

#include <algorithm>
#include <utility>

#include "platform/ansi.h"
#include "platform/failure.h"

namespace quillon {
namespace {

constexpr std::size_t PieceSize = 65536;

// No playlist, list of folders or settings file has such lines; what has would only eat memory.
constexpr std::size_t LongestLine = std::size_t{1} << 20U;

}  // namespace

AnsiTextReader::AnsiTextReader(std::unique_ptr<BinaryReader> bytes, std::string shownPath)
    : bytes_(std::move(bytes)), shownPath_(std::move(shownPath)) {
    Fill();
}

void AnsiTextReader::Fill() {
    const std::vector<std::uint8_t> piece = bytes_->Read(PieceSize);
    buffer_.assign(piece.begin(), piece.end());
    next_ = 0;
}

std::string AnsiTextReader::ReadLine() {
    if (AtEndOfStream()) throw Failure(FailureNumber::InputPastEnd, shownPath_);
    std::string line;
    bool ended = false;
    while (!ended && !AtEndOfStream()) {
        const std::size_t end = std::min(buffer_.find('\n', next_), buffer_.size());
        if (line.size() + (end - next_) > LongestLine) {
            throw Failure::Described(
                FailureNumber::Overflow,
                shownPath_ + " has a line of more than 1 MB, so it is not a text file", shownPath_);
        }
        line.append(buffer_, next_, end - next_);
        ended = end < buffer_.size();
        next_ = ended ? end + 1 : end;
        if (AtEndOfStream()) Fill();
    }
    if (ended && line.ends_with('\r')) line.pop_back();
    return AnsiToUtf8(line);
}

}  // namespace quillon
