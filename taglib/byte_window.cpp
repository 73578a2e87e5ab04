#include "taglib/byte_window.h"

#include <algorithm>

namespace quillon {

std::span<const std::uint8_t> ByteWindow::At(std::uint64_t position, std::size_t count) {
    if (position >= size_ || (file_ != nullptr && count > MostAtOnce)) return {};
    const auto there = static_cast<std::size_t>(std::min<std::uint64_t>(count, size_ - position));
    const Piece* piece = head_.Has(position, there) ? &head_ : &last_;
    if (!piece->Has(position, there)) piece = ReadPiece(position, there);
    if (piece == nullptr) return {};
    const auto rest = std::span(piece->Begin(), piece->size)
                          .subspan(static_cast<std::size_t>(position - piece->from));
    return rest.first(std::min(there, rest.size()));
}

const ByteWindow::Piece* ByteWindow::ReadPiece(std::uint64_t position, std::size_t count) {
    if (file_ == nullptr || pieces_ == MostPieces || read_ > MostBytes) return nullptr;
    Piece& piece = position == 0 ? head_ : last_;
    file_->SetPosition(position);
    piece.from = position;
    piece.size = 0;
    piece.large.clear();
    std::span<std::uint8_t> bytes(piece.small);
    if (count > PieceSize) {
        piece.large.resize(count);
        bytes = piece.large;
    }
    piece.size = file_->ReadInto(bytes);
    ++pieces_;
    read_ += piece.size;
    return &piece;
}

}  // namespace quillon
