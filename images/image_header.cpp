#include "images/image_header.h"

#include <cstddef>

namespace quillon {
namespace {

/// A number of some bytes; nothing where the file ends before.
class Numbers {
  public:
    explicit Numbers(std::string_view bytes) : bytes_(bytes) {}

    std::optional<std::uint64_t> Big(std::size_t at, std::size_t count) const {
        if (at > bytes_.size() || bytes_.size() - at < count) return std::nullopt;
        std::uint64_t number = 0;
        for (std::size_t i = 0; i < count; ++i)
            number = number << 8U | Byte(at + i);
        return number;
    }

    std::optional<std::uint64_t> Little(std::size_t at, std::size_t count) const {
        if (at > bytes_.size() || bytes_.size() - at < count) return std::nullopt;
        std::uint64_t number = 0;
        for (std::size_t i = count; i > 0; --i)
            number = number << 8U | Byte(at + i - 1);
        return number;
    }

  private:
    std::uint64_t Byte(std::size_t at) const { return static_cast<unsigned char>(bytes_[at]); }

    std::string_view bytes_;
};

using Number = std::optional<std::uint64_t>;

std::optional<ImageHeader> Sized(ImageKind kind, Number width, Number height) {
    if (!width || !height || *width == 0 || *height == 0) return std::nullopt;
    return ImageHeader{kind, *width, *height};
}

/// Goes from one marker to the next until the one that tells the size.
std::optional<ImageHeader> JpegHeader(const Numbers& file) {
    constexpr std::uint64_t FirstFrame = 0xC0, LastFrame = 0xCF, HuffmanTables = 0xC4,
                            Extension = 0xC8, ArithmeticTables = 0xCC, StartOfScan = 0xDA;
    for (std::size_t at = 2;;) {
        const Number start = file.Big(at, 1), marker = file.Big(at + 1, 1);
        if (!start || !marker || *start != 0xFF) return std::nullopt;
        if (*marker == 0xFF) {  // bytes to fill
            ++at;
            continue;
        }
        const bool isFrame = *marker >= FirstFrame && *marker <= LastFrame &&
                             *marker != HuffmanTables && *marker != Extension &&
                             *marker != ArithmeticTables;
        if (isFrame) return Sized(ImageKind::Jpeg, file.Big(at + 7, 2), file.Big(at + 5, 2));
        const Number length = file.Big(at + 2, 2);
        if (!length || *length < 2 || *marker == StartOfScan) return std::nullopt;
        at += 2 + static_cast<std::size_t>(*length);
    }
}

/// A bitmap's height is negative where its rows come from the top.
Number Magnitude(Number number) {
    constexpr std::uint64_t Sign = 0x80000000, Range = 0x100000000;
    if (!number || *number < Sign) return number;
    return Range - *number;
}

std::optional<ImageHeader> BmpHeader(const Numbers& file) {
    constexpr std::uint64_t OldHeader = 12;
    const Number size = file.Little(14, 4);
    if (size == OldHeader) return Sized(ImageKind::Bmp, file.Little(18, 2), file.Little(20, 2));
    return Sized(ImageKind::Bmp, Magnitude(file.Little(18, 4)), Magnitude(file.Little(22, 4)));
}

Number Plus(Number number, std::uint64_t more) {
    if (number) *number += more;
    return number;
}

Number Low14(Number number) {
    if (number) *number &= 0x3FFFU;
    return number;
}

std::optional<ImageHeader> WebPHeader(std::string_view image, const Numbers& file) {
    const std::string_view chunk = image.substr(12, 4);
    if (chunk == "VP8 ") {
        return Sized(ImageKind::WebP, Low14(file.Little(26, 2)), Low14(file.Little(28, 2)));
    }
    if (chunk == "VP8L") {
        const Number packed = file.Little(21, 4);
        if (!packed) return std::nullopt;
        return Sized(ImageKind::WebP, (*packed & 0x3FFFU) + 1, (*packed >> 14U & 0x3FFFU) + 1);
    }
    if (chunk == "VP8X") {
        return Sized(ImageKind::WebP, Plus(file.Little(24, 3), 1), Plus(file.Little(27, 3), 1));
    }
    return std::nullopt;
}

}  // namespace

std::optional<ImageHeader> ReadImageHeader(std::string_view image) {
    const Numbers file(image);
    if (image.starts_with("\xFF\xD8\xFF")) return JpegHeader(file);
    if (image.starts_with("\x89PNG\r\n\x1A\n"))
        return Sized(ImageKind::Png, file.Big(16, 4), file.Big(20, 4));
    if (image.starts_with("GIF87a") || image.starts_with("GIF89a"))
        return Sized(ImageKind::Gif, file.Little(6, 2), file.Little(8, 2));
    if (image.starts_with("BM")) return BmpHeader(file);
    if (image.starts_with("RIFF") && image.size() > 16 && image.substr(8, 4) == "WEBP")
        return WebPHeader(image, file);
    return std::nullopt;
}

}  // namespace quillon
