#include "images/gd_thumbnails.h"

#include <gtest/gtest.h>

#include "images/image_header.h"
#include "tests/images/sample_images.h"

namespace quillon {
namespace {

constexpr int Side = 100;

Thumbnail Made(const std::string& image) {
    return GdThumbnails().Make(image, Side);
}

/// The size of what was made of an image, "WIDTHxHEIGHT", or the problem.
std::string SizeOf(const std::string& image) {
    const Thumbnail made = Made(image);
    if (!made.problem.empty()) return made.problem;
    const auto header = ReadImageHeader(made.jpeg);
    if (!header || header->kind != ImageKind::Jpeg) return "no JPEG";
    return std::to_string(header->width) + 'x' + std::to_string(header->height);
}

constexpr const char* Unreadable = "is not an image that can be read";
constexpr samples::Colour Red{200, 30, 20};

TEST(GdThumbnails, ShrinkUntilTheLongerSideFits) {
    EXPECT_EQ(SizeOf(samples::Png(400, 200, Red)), "100x50");
    EXPECT_EQ(SizeOf(samples::Png(150, 600, Red)), "25x100");
    EXPECT_EQ(SizeOf(samples::Png(1000, 2, Red)), "100x1");
}

TEST(GdThumbnails, LeaveSmallImagesTheirSize) {
    EXPECT_EQ(SizeOf(samples::Png(60, 40, Red)), "60x40");
}

TEST(GdThumbnails, AreMadeOfAllKindsOfImagesThatBrowsersShow) {
    EXPECT_EQ(SizeOf(samples::Jpeg()), "100x100");
    EXPECT_EQ(SizeOf(samples::Bmp(200, 100, Red)), "100x50");
    EXPECT_EQ(SizeOf(samples::Gif(1, 1)), "1x1");
    EXPECT_EQ(SizeOf(samples::WebP()), "1x1");
}

TEST(GdThumbnails, TellWhatIsNoImage) {
    EXPECT_EQ(SizeOf(""), Unreadable);
    EXPECT_EQ(SizeOf("picture"), Unreadable);
    EXPECT_EQ(SizeOf("\x89PNG\r\n\x1A\n"), Unreadable);
    EXPECT_EQ(SizeOf("BM"), Unreadable);
    EXPECT_EQ(SizeOf("GIF89a"), Unreadable);
    EXPECT_EQ(SizeOf("RIFFxxxxWEBPVP8L"), Unreadable);
    EXPECT_EQ(SizeOf(samples::Png(10, 10, Red).substr(0, 40)), Unreadable);
    EXPECT_EQ(SizeOf(samples::Jpeg().substr(0, 100)), Unreadable);
}

TEST(GdThumbnails, DoNotUnpackWhatClaimsTooManyPixels) {
    constexpr const char* TooLarge = "has too many pixels";
    std::string png = samples::Png(1, 1, Red), bmp = samples::Bmp(1, 1, Red);
    png.replace(16, 8, samples::Big(100'000, 4) + samples::Big(100'000, 4));
    bmp.replace(18, 8, samples::Little(40'000, 4) + samples::Little(0xFFFFFFFF - 40'000, 4));
    EXPECT_EQ(SizeOf(png), TooLarge);
    EXPECT_EQ(SizeOf(bmp), TooLarge);
    EXPECT_EQ(SizeOf(samples::Gif(60'000, 60'000)), TooLarge);
    std::string jpeg = samples::Jpeg();
    const std::size_t frame = jpeg.find("\xFF\xC0");
    jpeg.replace(frame + 5, 4, samples::Big(65'500, 2) + samples::Big(65'500, 2));
    EXPECT_EQ(SizeOf(jpeg), TooLarge);
}

TEST(GdThumbnails, SurviveImagesThatEndTooEarlyOrHoldOtherBytes) {
    for (const std::string& image : {samples::Png(20, 20, Red), samples::Bmp(20, 20, Red),
                                     samples::Gif(1, 1), samples::WebP(), samples::Jpeg()}) {
        for (std::size_t i = 0; i < image.size(); i += 1 + image.size() / 60) {
            Made(image.substr(0, i));
            std::string damaged = image;
            for (const char byte : {'\0', '\x7F', '\xFF'}) {
                damaged[i] = byte;
                const Thumbnail made = Made(damaged);
                EXPECT_NE(made.jpeg.empty(), made.problem.empty());
            }
        }
    }
}

TEST(ImageHeader, KnowsTheSizeOfEachKind) {
    const auto size = [](const std::string& image) {
        const auto header = ReadImageHeader(image);
        return header ? std::pair(header->width, header->height) : std::pair(0UL, 0UL);
    };
    EXPECT_EQ(size(samples::Jpeg()), std::pair(200UL, 200UL));
    EXPECT_EQ(size(samples::Png(7, 9, Red)), std::pair(7UL, 9UL));
    EXPECT_EQ(size(samples::Bmp(7, 9, Red)), std::pair(7UL, 9UL));
    EXPECT_EQ(size(samples::Gif(700, 9)), std::pair(700UL, 9UL));
    EXPECT_EQ(size(samples::WebP()), std::pair(1UL, 1UL));
    EXPECT_EQ(size("RIFF....WEBPVP8X........" + samples::Little(699, 3) + samples::Little(8, 3)),
              std::pair(700UL, 9UL));
    EXPECT_EQ(size("RIFF....WEBPVP8 ....\x10\x02\x03\x9D\x01\x2A" + samples::Little(700, 2) +
                   samples::Little(9, 2)),
              std::pair(700UL, 9UL));
}

TEST(ImageHeader, ReadsBitmapsWhoseRowsComeFromTheTop) {
    std::string bmp = samples::Bmp(7, 9, Red);
    bmp.replace(22, 4, samples::Little(0x100000000 - 9, 4));
    EXPECT_EQ(ReadImageHeader(bmp)->height, 9U);
}

TEST(ImageHeader, EndsWithAJpegWhoseMarkersLeadNowhere) {
    EXPECT_FALSE(ReadImageHeader("\xFF\xD8\xFF\xE0" + samples::Big(0, 2)));
    EXPECT_FALSE(ReadImageHeader("\xFF\xD8\xFF\xE0" + samples::Big(60'000, 2)));
    EXPECT_FALSE(ReadImageHeader("\xFF\xD8" + std::string(1000, '\xFF')));
}

}  // namespace
}  // namespace quillon
