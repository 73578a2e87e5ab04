#include "taglib/tag_library.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>

#include "platform/ansi.h"
#include "tests/support/sound_file.h"
#include "tests/support/tagged_file.h"
#include "tests/taglib/bytes_reader.h"

namespace quillon {
namespace {

using support::ApeTag;
using support::CommentContent;
using support::CountedSound;
using support::FrameBytes;
using support::FramesTag;
using support::Sound;
using support::TextContent;
using support::Unsynchronised;
using ::testing::Lt;
using ::testing::Optional;

std::string OldTag(const std::string& song) {
    support::RawTag tag;
    tag.song = song;
    return support::TagBytes(tag);
}

OtherTags Read(BytesReader& file) {
    const std::uint64_t count = std::min<std::uint64_t>(file.Size(), TagFormats::EndSize);
    file.SetPosition(file.Size() - count);
    const std::vector<std::uint8_t> end = file.Read(static_cast<std::size_t>(count));
    return TagLibrary().Read(file, end);
}

OtherTags Read(const std::string& bytes) {
    BytesReader file(bytes);
    return Read(file);
}

std::string Title(unsigned version, std::string_view text, char encoding = 0) {
    return FrameBytes(version, version == 2 ? "TT2" : "TIT2", TextContent(text, encoding));
}

std::string TitleOf(const std::string& frame, unsigned version = 3) {
    return Read(FramesTag(version, frame) + Sound(2)).tag.song;
}

std::string GenreOf(const std::string& text) {
    const OtherTags found = Read(FramesTag(3, FrameBytes(3, "TCON", TextContent(text))) + Sound(2));
    return found.genreNumber ? std::to_string(*found.genreNumber) : found.tag.genre;
}

TEST(TagLibrary, ReadsAllFieldsOfEachVersion) {
    const Tag all = [] {
        Tag tag;
        tag.marker = "TAG";
        tag.song = "A title of more than thirty characters";
        tag.artist = "An artist";
        tag.album = "An album";
        tag.year = "1999";
        tag.comment = "Length='184'";
        tag.track = "3";
        tag.disc = "2";
        tag.genre = "Synthpop of my own";
        return tag;
    }();
    for (const unsigned version : {2U, 3U, 4U}) {
        const auto frame = [version](const std::string& old, const std::string& name,
                                     const std::string& content) {
            return FrameBytes(version, version == 2 ? old : name, content);
        };
        const std::string frames = frame("TT2", "TIT2", TextContent(all.song)) +
                                   frame("TP1", "TPE1", TextContent(all.artist)) +
                                   frame("TAL", "TALB", TextContent(all.album)) +
                                   frame("TYE", version == 4 ? "TDRC" : "TYER",
                                         TextContent(version == 4 ? "1999-05-01" : "1999")) +
                                   frame("COM", "COMM", CommentContent("0000", "iTunNORM")) +
                                   frame("COM", "COMM", CommentContent(all.comment)) +
                                   frame("TRK", "TRCK", TextContent("03/12")) +
                                   frame("TPA", "TPOS", TextContent("2/2")) +
                                   frame("TCO", "TCON", TextContent(all.genre));
        EXPECT_EQ(Read(FramesTag(version, frames, 100) + Sound(2)).tag, all) << version;
    }
}

TEST(TagLibrary, ReadsEveryEncodingOfTexts) {
    const std::string japanese = "\xE6\x97\xA5\xE6\x9C\xAC";
    using namespace std::string_literals;
    EXPECT_EQ(TitleOf(Title(3, "\xFF\xFE\xE5\x65\x2C\x67"s, 1)), japanese);
    EXPECT_EQ(TitleOf(Title(3, "\xFE\xFF\x65\xE5\x67\x2C"s, 1)), japanese);
    EXPECT_EQ(TitleOf(Title(4, "\x65\xE5\x67\x2C"s, 2), 4), japanese);
    EXPECT_EQ(TitleOf(Title(4, japanese, 3), 4), japanese);
    EXPECT_EQ(TitleOf(Title(3, "Caf\xE9")), "Caf\xC3\xA9");
}

TEST(TagLibrary, ReadsTextThatIsDeclaredAsLatin1AndIsUtf8OrOfTheCodePage) {
    EXPECT_EQ(TitleOf(Title(3, "\xE6\x97\xA5\xE6\x9C\xAC")), "\xE6\x97\xA5\xE6\x9C\xAC");
    EXPECT_EQ(TitleOf(Title(3, "5 \x80")), "5 \xE2\x82\xAC");
}

TEST(TagLibrary, ReadsUtf16ThatIsDeclaredAsLatin1) {
    using namespace std::string_literals;
    EXPECT_EQ(TitleOf(Title(3, "\xFF\xFE\x44\x00\xE9\x00"s)), "D\xC3\xA9");
    EXPECT_EQ(TitleOf(Title(3, "\xFE\xFF\x65\xE5\x67\x2C"s)), "\xE6\x97\xA5\xE6\x9C\xAC");
    EXPECT_EQ(TitleOf(Title(4, "\xFF\xFE\x44\x00\x00\x00"s), 4), "D");
}

TEST(TagLibrary, NeverGivesTextThatIsNoUtf8) {
    using namespace std::string_literals;
    for (const std::string& text :
         {"\xFF\xFE\x00\xD8"s, "\xFF\xFE\x41\x00\x00\xDC"s, "\xFF\xFE\x41"s, "\xD8"s, ""s}) {
        for (const char encoding : {'\0', '\1', '\2', '\3', '\7'})
            EXPECT_TRUE(IsValidUtf8(TitleOf(Title(4, text, encoding), 4)));
    }
}

TEST(TagLibrary, TakesTheFirstOfSeveralValues) {
    using namespace std::string_literals;
    EXPECT_EQ(TitleOf(Title(4, "One\0Two"s, 3), 4), "One");
}

TEST(TagLibrary, ReadsATagThatIsUnsynchronised) {
    using namespace std::string_literals;
    const std::string frames = Title(3, "\xFF\xFE\x41\x00\xFF\x00\x42\x00"s, 1);
    EXPECT_EQ(Read(FramesTag(3, Unsynchronised(frames), 0, 0x80) + Sound(2)).tag.song,
              "A\xC3\xBF"
              "B");
    const std::string content = Unsynchronised(TextContent("\xFF\xFE\x41\x00\xFF\x00\x42\x00"s, 1));
    EXPECT_EQ(Read(FramesTag(4, FrameBytes(4, "TIT2", content, 0x02), 0, 0x80) + Sound(2)).tag.song,
              "A\xC3\xBF"
              "B");
}

TEST(TagLibrary, ReadsSizesThatAreWrittenAsTheOtherVersionDoes) {
    const std::string longText(200, 'x');
    const std::string after = FrameBytes(3, "TPE1", TextContent("artist"));
    const OtherTags plain = Read(FramesTag(4, Title(3, longText) + after) + Sound(2));
    EXPECT_EQ(plain.tag.song, longText);
    EXPECT_EQ(plain.tag.artist, "artist");
    const OtherTags sevenBit = Read(FramesTag(3, Title(4, longText) + after) + Sound(2));
    EXPECT_EQ(sevenBit.tag.song, longText);
    EXPECT_EQ(sevenBit.tag.artist, "artist");
}

TEST(TagLibrary, GoesOnBehindAFrameWithoutContent) {
    EXPECT_EQ(TitleOf(FrameBytes(3, "TPE1", "") + Title(3, "Dawn")), "Dawn");
}

TEST(TagLibrary, EndsAtAFrameThatGoesBeyondItsTag) {
    std::string lying = FrameBytes(3, "TPE1", TextContent("artist"));
    lying[4] = '\x7F';
    const OtherTags found = Read(FramesTag(3, Title(3, "Dawn") + lying + Title(3, "x")) + Sound(2));
    EXPECT_EQ(found.tag.song, "Dawn");
    EXPECT_EQ(found.tag.artist, "");
}

TEST(TagLibrary, BelievesNoTagThatGoesBeyondTheFile) {
    std::string tag = FramesTag(3, Title(3, "Dawn"));
    tag[6] = '\x10';
    EXPECT_FALSE(Read(tag + Sound(50)).tag.IsThere());
    EXPECT_THAT(Read(tag + Sound(50)).seconds, Optional(1));
}

TEST(TagLibrary, ReadsLittleOfATagWithAHundredMegabytesOfArt) {
    constexpr std::uint32_t Art = 100'000'000;
    const std::string artist = FrameBytes(3, "TPE1", TextContent("artist"));
    std::string frames = Title(3, "Dawn") + "APIC";
    for (const unsigned shift : {24U, 16U, 8U, 0U})
        frames += static_cast<char>((Art >> shift) & 0xFFU);
    frames += std::string(2, '\0');
    std::string head = FramesTag(3, frames);
    const std::uint64_t size = head.size() - 10 + Art + artist.size();
    for (unsigned i = 0; i < 4; ++i)
        head[6 + i] = static_cast<char>((size >> (7 * (3 - i))) & 0x7FU);
    BytesReader file(head, Art, artist + Sound(500));
    const OtherTags found = Read(file);
    EXPECT_EQ(found.tag.song, "Dawn");
    EXPECT_EQ(found.tag.artist, "artist");
    EXPECT_THAT(found.seconds, Optional(13));
    EXPECT_THAT(file.bytesRead, Lt(40'000U));
}

// The file's end, the tag's beginning, what follows the picture, and the sound, each once.
TEST(TagLibrary, ReadsEachPieceOfATagWithAPictureOnce) {
    using namespace std::string_literals;
    const std::string picture = "\0image/png\0\3\0\x89PNG\r\n\x1A\n"s + std::string(30'000, 'x');
    const std::string frames = Title(3, "Dawn") + FrameBytes(3, "APIC", picture) +
                               FrameBytes(3, "TPE1", TextContent("artist"));
    BytesReader file(FramesTag(3, frames, 8000) + Sound(500));
    const OtherTags found = Read(file);
    EXPECT_EQ(found.tag.song, "Dawn");
    EXPECT_EQ(found.tag.artist, "artist");
    EXPECT_EQ(found.art, EmbeddedArt::Promised);
    EXPECT_THAT(found.seconds, Optional(13));
    EXPECT_EQ(file.reads, 4U);
}

TEST(TagLibrary, ReadsLittleOfWhatIsNoMusic) {
    BytesReader zeros("", 1'000'000'000);
    EXPECT_FALSE(Read(zeros).tag.IsThere());
    EXPECT_THAT(zeros.bytesRead, Lt(100'000U));
}

TEST(TagLibrary, ReadsLittleOfATagThatIsMadeToKeepItReading) {
    std::string frames;
    for (int i = 0; i < 20'000; ++i)
        frames += FrameBytes(4, "COMM", CommentContent(std::string(5000, 'x'), "about"));
    BytesReader file(FramesTag(4, frames) + Sound(2));
    Read(file);
    EXPECT_THAT(file.bytesRead, Lt(4'000'000U));
}

TEST(TagLibrary, ReadsApeWhereThereIsNoVersion2) {
    const std::string ape = ApeTag({{"TITLE", "Dawn"},
                                    {"Artist", "An artist"},
                                    {"Album", "An album"},
                                    {"Track", "4/9"},
                                    {"Disc", "1"},
                                    {"Year", "2001"},
                                    {"Genre", "Drone"},
                                    {"Comment", "said"}});
    for (const std::string& old : {std::string(), OldTag("Cut")}) {
        const OtherTags found = Read(Sound(2) + ape + old);
        EXPECT_EQ(TagRecord(found.tag), "TAG|Dawn|An artist|An album|2001|said||4|Drone|");
        EXPECT_EQ(found.tag.disc, "1");
    }
    EXPECT_EQ(Read(FramesTag(3, Title(3, "Dusk")) + Sound(2) + ape).tag.artist, "");
    EXPECT_EQ(Read(FramesTag(3, "", 50) + Sound(2) + ape).tag.song, "Dawn");
}

TEST(TagLibrary, KnowsGenresByNameByNumberAndByBoth) {
    EXPECT_EQ(GenreOf("Synthpop of my own"), "Synthpop of my own");
    EXPECT_EQ(GenreOf("(17)"), "17");
    EXPECT_EQ(GenreOf("17"), "17");
    EXPECT_EQ(GenreOf("(5)"), "5");
    EXPECT_EQ(GenreOf("(255)"), "");
    EXPECT_EQ(GenreOf("(17"), "(17");
    EXPECT_EQ(GenreOf("()"), "");
    EXPECT_EQ(GenreOf("Rock (live)"), "Rock (live)");
    EXPECT_EQ(GenreOf("(17)(RX)"), "RX");
    EXPECT_EQ(GenreOf("(17)Hard Rock"), "Hard Rock");
    EXPECT_EQ(GenreOf("(17)Rock"), "Rock");
}

TEST(TagLibrary, TakesNoTrackFromWhatIsNoNumber) {
    const auto track = [](const std::string& text) {
        return Read(FramesTag(3, FrameBytes(3, "TRCK", TextContent(text))) + Sound(2)).tag.track;
    };
    EXPECT_EQ(track("7"), "7");
    EXPECT_EQ(track("A7"), "");
    EXPECT_EQ(track("0"), "");
    EXPECT_EQ(track("123456"), "");
}

TEST(TagLibrary, TellsTheLengthBySizeAndBitRate) {
    EXPECT_THAT(Read(Sound(383)).seconds, Optional(10));
    const std::string framed = FramesTag(3, Title(3, "Dawn"), 3000) + Sound(383);
    EXPECT_THAT(Read(framed + OldTag("Dawn")).seconds, Optional(10));
    EXPECT_THAT(Read(std::string(2000, 'x') + Sound(383)).seconds, Optional(10));
}

TEST(TagLibrary, TellsTheLengthByTheNumberOfFrames) {
    for (const std::string_view header : {"Xing", "Info", "VBRI"})
        EXPECT_THAT(Read(CountedSound(header, 100, 766)).seconds, Optional(20)) << header;
}

TEST(TagLibrary, BelievesNoNumberOfFramesThatTheBytesCannotHold) {
    for (const std::uint32_t lie : {0U, 1U, 100'000U, 0xFFFFFFFFU})
        EXPECT_THAT(Read(CountedSound("Xing", 383, lie)).seconds, Optional(10)) << lie;
}

TEST(TagLibrary, TellsNoLengthWithoutSound) {
    EXPECT_EQ(Read("").seconds, std::nullopt);
    EXPECT_EQ(Read("x").seconds, std::nullopt);
    EXPECT_EQ(Read(FramesTag(3, Title(3, "Dawn"), 500)).seconds, std::nullopt);
    EXPECT_EQ(Read(std::string(5000, '\xFF')).seconds, std::nullopt);
}

TEST(TagLibrary, ReadsWhateverIsLeftOfAFile) {
    const std::string whole = FramesTag(4, Title(4, "Dawn", 3) + FrameBytes(4, "TPE1", "\3x"), 20) +
                              CountedSound("Xing", 3, 100) + ApeTag({{"Title", "x"}}) + OldTag("x");
    for (std::size_t size = 0; size < whole.size(); size += 3)
        EXPECT_TRUE(IsValidUtf8(Read(whole.substr(0, size)).tag.song));
}

}  // namespace
}  // namespace quillon
