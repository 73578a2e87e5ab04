#include "tests/images/sample_images.h"

#include <cstddef>
#include <initializer_list>
#include <string_view>
#include <vector>

#include "picker/placeholder.h"

namespace quillon::samples {
namespace {

using namespace std::string_literals;

std::uint32_t Crc(std::string_view bytes) {
    std::uint32_t crc = 0xFFFFFFFF;
    for (const char byte : bytes) {
        crc ^= static_cast<unsigned char>(byte);
        for (int bit = 0; bit < 8; ++bit)
            crc = (crc >> 1U) ^ ((crc & 1U) != 0 ? 0xEDB88320U : 0U);
    }
    return ~crc;
}

std::uint32_t Adler(std::string_view bytes) {
    constexpr std::uint32_t Modulus = 65521;
    std::uint32_t a = 1, b = 0;
    for (const char byte : bytes) {
        a = (a + static_cast<unsigned char>(byte)) % Modulus;
        b = (b + a) % Modulus;
    }
    return b << 16U | a;
}

/// In the form of zlib, without making it smaller.
std::string Stored(std::string_view bytes) {
    constexpr std::size_t MostInBlock = 65535;
    std::string packed = "\x78\x01";
    for (std::size_t at = 0; at < bytes.size(); at += MostInBlock) {
        const std::string_view block = bytes.substr(at, MostInBlock);
        packed += at + MostInBlock >= bytes.size() ? '\1' : '\0';
        packed += Little(block.size(), 2) + Little(~block.size() & 0xFFFFU, 2);
        packed += block;
    }
    return packed + Big(Adler(bytes), 4);
}

std::string Chunk(const std::string& kind, const std::string& content) {
    return Big(content.size(), 4) + kind + content + Big(Crc(kind + content), 4);
}

std::string Bytes(std::initializer_list<int> values) {
    std::string bytes;
    for (const int value : values)
        bytes += static_cast<char>(value);
    return bytes;
}

}  // namespace

std::string Big(std::uint64_t number, int bytes) {
    std::string text;
    for (int i = bytes - 1; i >= 0; --i)
        text += static_cast<char>(number >> static_cast<unsigned>(8 * i) & 0xFFU);
    return text;
}

std::string Little(std::uint64_t number, int bytes) {
    const std::string big = Big(number, bytes);
    return {big.rbegin(), big.rend()};
}

std::string Png(int width, int height, Colour colour) {
    std::string row(1, '\0');
    for (int i = 0; i < width; ++i)
        row += Bytes({colour.red, colour.green, colour.blue});
    std::string rows;
    for (int i = 0; i < height; ++i)
        rows += row;
    return "\x89PNG\r\n\x1A\n" +
           Chunk("IHDR", Big(static_cast<std::uint64_t>(width), 4) +
                             Big(static_cast<std::uint64_t>(height), 4) + Bytes({8, 2, 0, 0, 0})) +
           Chunk("IDAT", Stored(rows)) + Chunk("IEND", "");
}

std::string Bmp(int width, int height, Colour colour) {
    std::string row;
    for (int i = 0; i < width; ++i)
        row += Bytes({colour.blue, colour.green, colour.red});
    while (row.size() % 4 != 0)
        row += '\0';
    std::string rows;
    for (int i = 0; i < height; ++i)
        rows += row;
    constexpr std::size_t Headers = 54;
    return "BM" + Little(Headers + rows.size(), 4) + Little(0, 4) + Little(Headers, 4) +
           Little(40, 4) + Little(static_cast<std::uint64_t>(width), 4) +
           Little(static_cast<std::uint64_t>(height), 4) + Little(1, 2) + Little(24, 2) +
           Little(0, 4) + Little(rows.size(), 4) + std::string(16, '\0') + rows;
}

std::string Gif(int width, int height) {
    return "GIF89a" + Little(static_cast<std::uint64_t>(width), 2) +
           Little(static_cast<std::uint64_t>(height), 2) + Bytes({0x80, 0, 0}) +
           Bytes({255, 255, 255, 0, 0, 0}) + "," + Little(0, 4) + Little(1, 2) + Little(1, 2) +
           Bytes({0, 2, 2, 0x44, 1, 0}) + ";";
}

std::string WebP() {
    return "RIFF" + Little(26, 4) + "WEBPVP8L" + Little(13, 4) +
           Bytes({0x2F, 0, 0, 0, 0x10, 0x07, 0x10, 0x11, 0x11, 0x88, 0x88, 0xFE, 0x07}) + "\0"s;
}

std::string Jpeg() {
    const std::vector<std::uint8_t> image = PlaceholderImage();
    return {image.begin(), image.end()};
}

}  // namespace quillon::samples
