#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <utility>
#include <vector>

#include "platform/files.h"

namespace quillon {

/// Bytes of a file, of which only pieces are read, and not many: what asks for more pieces than any
/// sound file needs is led astray by it, and gets nothing more.
class ByteWindow {
  public:
    /// `file` must outlive this object.
    explicit ByteWindow(BinaryReader& file) : file_(&file), size_(file.Size()) {}
    /// Over bytes that are at hand.
    explicit ByteWindow(std::vector<std::uint8_t> bytes) : size_(bytes.size()) {
        head_.size = bytes.size();
        head_.large = std::move(bytes);
    }

    std::uint64_t Size() const { return size_; }

    /// The bytes at a place; fewer where there are no more. Valid until the next call. `count` is
    /// at most MostAtOnce, unless all bytes are at hand.
    std::span<const std::uint8_t> At(std::uint64_t position, std::size_t count);

    static constexpr std::size_t MostAtOnce = std::size_t{512} * 1024;

  private:
    static constexpr std::size_t PieceSize = 4096, MostPieces = 256, MostBytes = 4 * MostAtOnce;

    /// Nearly all pieces are of one size, which has its place here.
    struct Piece {
        std::uint64_t from = 0;
        std::size_t size = 0;
        std::array<std::uint8_t, PieceSize> small;
        std::vector<std::uint8_t> large;  ///< holds the piece instead where it is not empty

        bool Has(std::uint64_t position, std::size_t count) const {
            return position >= from && position + count <= from + size;
        }
        const std::uint8_t* Begin() const { return large.empty() ? small.data() : large.data(); }
    };

    /// Null where no more is to be read.
    const Piece* ReadPiece(std::uint64_t position, std::size_t count);

    BinaryReader* file_ = nullptr;
    std::uint64_t size_;
    /// The file's first piece, where a tag's small frames are, and the one read last: between those
    /// two a tag is read that has a picture.
    Piece head_, last_;
    std::size_t pieces_ = 0, read_ = 0;
};

}  // namespace quillon
