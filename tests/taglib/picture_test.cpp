#include <gtest/gtest.h>
#include <string>

#include "taglib/tag_library.h"
#include "tests/support/tagged_file.h"
#include "tests/taglib/bytes_reader.h"

namespace quillon {
namespace {

using support::FrameBytes;
using support::FramesTag;
using support::Sound;
using support::TextContent;
using support::Unsynchronised;

const std::string Jpeg = std::string("\xFF\xD8\xFF\xE0", 4) + std::string(500, 'j');
const std::string Png = "\x89PNG\r\n\x1A\n" + std::string(500, 'p');

/// A picture frame's content: encoding, format, kind, description, picture.
std::string PictureContent(const std::string& picture, char kind = 3, char encoding = 0) {
    const std::size_t end = encoding == 1 || encoding == 2 ? 2 : 1;
    return std::string(1, encoding) + "image/jpeg" + '\0' + std::string(1, kind) + "about" +
           std::string(end == 2 ? 1 : 0, '\0') + std::string(end, '\0') + picture;
}

std::string Frames(unsigned version, const std::string& content, unsigned flags = 0) {
    return FrameBytes(version, "TIT2", TextContent("Dawn")) +
           FrameBytes(version, "APIC", content, flags);
}

EmbeddedArt Promise(const std::string& bytes) {
    BytesReader file(bytes);
    const std::vector<std::uint8_t> end = file.Read(TagFormats::EndSize);
    return TagLibrary().Read(file, end).art;
}

/// The extension and the picture.
std::string Art(const std::string& bytes) {
    BytesReader file(bytes);
    const std::optional<EmbeddedImage> image = TagLibrary().ReadArt(file);
    if (!image) return "";
    return image->extension + ' ' + std::string(image->bytes.begin(), image->bytes.end());
}

TEST(PictureOfATag, IsFoundInEachVersion) {
    for (const unsigned version : {3U, 4U}) {
        const std::string bytes =
            FramesTag(version, Frames(version, PictureContent(Jpeg))) + Sound(2);
        EXPECT_EQ(Promise(bytes), EmbeddedArt::Promised);
        EXPECT_EQ(Art(bytes), ".jpg " + Jpeg);
    }
    const std::string old = std::string(1, '\0') + "PNG" + '\3' + '\0' + Png;
    const std::string bytes = FramesTag(2, FrameBytes(2, "PIC", old)) + Sound(2);
    EXPECT_EQ(Promise(bytes), EmbeddedArt::Promised);
    EXPECT_EQ(Art(bytes), ".png " + Png);
}

TEST(PictureOfATag, IsTheFrontCoverElseTheFirst) {
    const std::string other = FrameBytes(3, "APIC", PictureContent(Jpeg, 4));
    const std::string front = FrameBytes(3, "APIC", PictureContent(Png, 3));
    EXPECT_EQ(Art(FramesTag(3, other + front) + Sound(2)), ".png " + Png);
    EXPECT_EQ(Art(FramesTag(3, other) + Sound(2)), ".jpg " + Jpeg);
}

TEST(PictureOfATag, MayHaveADescriptionOfWideCharacters) {
    const std::string wide = std::string(1, '\1') + "image/png" + '\0' + '\3' +
                             std::string(
                                 "\xFF\xFE"
                                 "a\0\0\0",
                                 6) +
                             Png;
    EXPECT_EQ(Art(FramesTag(3, Frames(3, wide)) + Sound(2)), ".png " + Png);
}

TEST(PictureOfATag, IsFreedOfZeroBytesStrewnIn) {
    const std::string frames = Frames(3, PictureContent(Jpeg));
    constexpr unsigned IsUnsynchronised = 0x80;
    EXPECT_EQ(Art(FramesTag(3, Unsynchronised(frames), 0, IsUnsynchronised) + Sound(2)),
              ".jpg " + Jpeg);
}

TEST(PictureOfATag, IsNoneOfAnotherKind) {
    for (const std::string& content :
         {PictureContent("GIF89a and more"), PictureContent(""), std::string("\0image", 6),
          std::string(), std::string(1, '\0') + "-->" + '\0' + '\3' + '\0' + "http://x/y.jpg"}) {
        const std::string bytes = FramesTag(3, Frames(3, content)) + Sound(2);
        EXPECT_EQ(Promise(bytes), EmbeddedArt::None);
        EXPECT_EQ(Art(bytes), "");
    }
    EXPECT_EQ(Promise(Sound(2)), EmbeddedArt::None);
    EXPECT_EQ(Art(Sound(2)), "");
}

TEST(PictureOfATag, IsNotReadWhereItIsTooLarge) {
    const std::string large = Jpeg + std::string(TagFormats::MostArt, 'x');
    BytesReader file(FramesTag(3, Frames(3, PictureContent(large))) + Sound(2));
    file.SetPosition(file.Size() - TagFormats::EndSize);
    const std::vector<std::uint8_t> end = file.Read(TagFormats::EndSize);
    const std::uint64_t before = file.bytesRead;
    EXPECT_EQ(TagLibrary().Read(file, end).art, EmbeddedArt::TooLarge);
    EXPECT_LT(file.bytesRead - before, 100'000U);
    EXPECT_FALSE(TagLibrary().ReadArt(file));
}

}  // namespace
}  // namespace quillon
