#include "picker/placeholder.h"

#include <cstddef>
#include <initializer_list>

namespace quillon {
namespace {

// The picture is 25 x 25 squares. One square is one block of a baseline JPEG, which needs but its
// mean brightness then: with a quantiser of 64, (grey - 128) / 8.
constexpr int Squares = 25;
constexpr int BlockSize = 8;

using Bytes = std::vector<std::uint8_t>;

/// Brightness of a square, -16 (black) to 15 (white).
int BrightnessAt(int row, int column) {
    constexpr int Centre = Squares / 2;
    constexpr int Background = 11, Vinyl = -11, Groove = -8, Label = 5;
    const int distance = (row - Centre) * (row - Centre) + (column - Centre) * (column - Centre);
    if (distance == 0 || distance > 112) return Background;
    if (distance <= 14) return Label;
    const bool isGroove = (distance > 34 && distance <= 46) || (distance > 68 && distance <= 82);
    return isGroove ? Groove : Vinyl;
}

/// Packs bits, first bit highest, as a JPEG scan has them.
class BitWriter {
  public:
    explicit BitWriter(Bytes& bytes) : bytes_(bytes) {}

    void Put(unsigned value, int count) {
        for (int bit = count - 1; bit >= 0; --bit)
            PutBit((value >> static_cast<unsigned>(bit)) & 1U);
    }

    /// Fills the last byte with ones.
    void Finish() {
        while (used_ != 0)
            PutBit(1);
    }

  private:
    void PutBit(unsigned bit) {
        current_ = current_ << 1U | bit;
        if (++used_ < 8) return;
        bytes_.push_back(static_cast<std::uint8_t>(current_));
        // What looks like a marker is told apart by a zero behind it.
        if (current_ == 0xFF) bytes_.push_back(0);
        current_ = 0;
        used_ = 0;
    }

    Bytes& bytes_;
    unsigned current_ = 0;
    int used_ = 0;
};

/// A block by the difference from the one before: the class of its size in three bits, then the
/// difference itself, then the one bit that says there is nothing else.
void PutBlock(BitWriter& bits, int difference) {
    const unsigned size = static_cast<unsigned>(difference < 0 ? -difference : difference);
    int length = 0;
    while (size >> static_cast<unsigned>(length) != 0)
        ++length;
    bits.Put(static_cast<unsigned>(length), 3);
    const unsigned negative = (1U << static_cast<unsigned>(length)) - 1 - size;
    bits.Put(difference < 0 ? negative : size, length);
    bits.Put(0, 1);
}

void Append(Bytes& image, std::initializer_list<int> bytes) {
    for (const int byte : bytes)
        image.push_back(static_cast<std::uint8_t>(byte));
}

void AppendHeaders(Bytes& image) {
    constexpr int Size = Squares * BlockSize;
    Append(image, {0xFF, 0xD8});
    Append(image, {0xFF, 0xE0, 0, 16, 'J', 'F', 'I', 'F', 0, 1, 1, 0, 0, 1, 0, 1, 0, 0});
    Append(image, {0xFF, 0xDB, 0, 67, 0});
    image.insert(image.end(), std::size_t{BlockSize} * BlockSize, 64);
    Append(image, {0xFF, 0xC0, 0, 11, 8, 0, Size, 0, Size, 1, 1, 0x11, 0});
    // Six classes of differences, all with codes of three bits; one code for the end of a block.
    Append(image, {0xFF, 0xC4, 0, 25, 0x00, 0, 0, 6, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0});
    Append(image, {0, 1, 2, 3, 4, 5});
    Append(image, {0xFF, 0xC4, 0, 20, 0x10, 1, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0});
    Append(image, {0xFF, 0xDA, 0, 8, 1, 1, 0x00, 0, 63, 0});
}

}  // namespace

std::vector<std::uint8_t> PlaceholderImage() {
    Bytes image;
    AppendHeaders(image);
    BitWriter bits(image);
    int before = 0;
    for (int row = 0; row < Squares; ++row) {
        for (int column = 0; column < Squares; ++column) {
            const int brightness = BrightnessAt(row, column);
            PutBlock(bits, brightness - before);
            before = brightness;
        }
    }
    bits.Finish();
    Append(image, {0xFF, 0xD9});
    return image;
}

}  // namespace quillon
