#include "taglib/byte_window.h"

#include <algorithm>

namespace quillon {

std::span<const std::uint8_t> ByteWindow::At(std::uint64_t position, std::size_t count) {
    if (position >= size_ || (file_ != nullptr && count > MostAtOnce)) return {};
    const auto there = static_cast<std::size_t>(std::min<std::uint64_t>(count, size_ - position));
    const bool isIn = position >= from_ && position + there <= from_ + bytes_.size();
    if (!isIn) {
        if (file_ == nullptr || pieces_ == MostPieces || read_ > MostBytes) return {};
        file_->SetPosition(position);
        bytes_ = file_->Read(std::max(there, PieceSize));
        ++pieces_;
        read_ += bytes_.size();
        from_ = position;
    }
    const std::span<const std::uint8_t> rest =
        std::span<const std::uint8_t>(bytes_).subspan(static_cast<std::size_t>(position - from_));
    return rest.first(std::min(there, rest.size()));
}

}  // namespace quillon
