#include "picker/placeholder.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <map>
#include <span>

namespace quillon {
namespace {

using Bytes = std::vector<std::uint8_t>;

/// The segments of a JPEG file by marker, and what follows the scan's header.
struct Segments {
    std::map<int, std::vector<Bytes>> byMarker;
    Bytes scan;
};

Segments Dissect(const Bytes& image) {
    Segments segments;
    std::size_t at = 2;
    while (at + 4 <= image.size()) {
        EXPECT_EQ(image[at], 0xFF);
        const int marker = image[at + 1];
        const std::size_t length = image[at + 2] * 256U + image[at + 3];
        const auto begin = image.begin() + static_cast<std::ptrdiff_t>(at);
        segments.byMarker[marker].emplace_back(begin + 4,
                                               begin + 2 + static_cast<std::ptrdiff_t>(length));
        at += 2 + length;
        if (marker == 0xDA) break;
    }
    segments.scan.assign(image.begin() + static_cast<std::ptrdiff_t>(at), image.end());
    return segments;
}

/// The scan's blocks: three bits of size, the difference, one bit for the end of the block.
std::vector<int> Blocks(const Bytes& scan, std::size_t count) {
    std::vector<bool> bits;
    for (std::size_t i = 0; i + 2 < scan.size(); ++i) {
        for (unsigned bit = 8; bit-- > 0;)
            bits.push_back((unsigned{scan[i]} >> bit & 1U) != 0);
        if (scan[i] == 0xFF) ++i;
    }
    std::size_t at = 0;
    const auto take = [&](unsigned length) {
        int value = 0;
        for (; length > 0; --length)
            value = value * 2 + (at < bits.size() && bits[at] ? 1 : 0), ++at;
        return value;
    };
    std::vector<int> blocks;
    int brightness = 0;
    for (std::size_t i = 0; i < count; ++i) {
        const int length = take(3);
        const int value = take(static_cast<unsigned>(length));
        const bool negative = length > 0 && value < 1 << (length - 1);
        brightness += negative ? value - (1 << length) + 1 : value;
        EXPECT_EQ(take(1), 0);
        blocks.push_back(brightness);
    }
    EXPECT_LT(bits.size() - at, 8U);
    return blocks;
}

TEST(PlaceholderImage, IsAJpegOf200By200) {
    const Bytes image = PlaceholderImage();
    ASSERT_GT(image.size(), 4U);
    EXPECT_EQ(Bytes(image.begin(), image.begin() + 2), (Bytes{0xFF, 0xD8}));
    EXPECT_EQ(Bytes(image.end() - 2, image.end()), (Bytes{0xFF, 0xD9}));
    Segments segments = Dissect(image);
    ASSERT_EQ(segments.byMarker[0xC0].size(), 1U);
    EXPECT_EQ(segments.byMarker[0xC0][0], (Bytes{8, 0, 200, 0, 200, 1, 1, 0x11, 0}));
    EXPECT_EQ(segments.byMarker[0xDB][0].size(), 65U);
    EXPECT_EQ(segments.byMarker[0xC4].size(), 2U);
}

TEST(PlaceholderImage, ShowsADarkRecordOnALightGround) {
    const std::vector<int> blocks = Blocks(Dissect(PlaceholderImage()).scan, 625);
    const auto at = [&](std::size_t row, std::size_t column) { return blocks[row * 25 + column]; };
    EXPECT_GT(at(0, 0), 8);
    EXPECT_GT(at(24, 24), 8);
    EXPECT_LT(at(12, 4), -8);
    EXPECT_GT(at(12, 10), 0);
    EXPECT_EQ(at(12, 12), at(0, 0));
    EXPECT_TRUE(std::ranges::all_of(blocks, [](int b) { return b >= -16 && b <= 15; }));
}

}  // namespace
}  // namespace quillon
