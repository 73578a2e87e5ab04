#include <algorithm>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>

#include "platform/basic_text.h"
#include "tags/tag_reader.h"
#include "tests/support/fakes.h"
#include "tests/support/sound_file.h"

namespace quillon {
namespace {

using support::RawTag;
using support::SoundFile;
using support::TagBytes;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::StartsWith;

constexpr const char* Path = R"(D:\Music\A\B\x.mp3)";

class ReadID3Test : public ::testing::Test {
  protected:
    ReadID3Test() { world.run.GenreNames[17] = "Rock"; }

    /// The record of a file with this content.
    std::string RecordOf(const std::string& content) {
        world.files.AddFile(Path, content);
        return Record();
    }
    std::string Record(GenreAs genre = GenreAs::Name) {
        return TagRecord(ReadID3(world.run, Path, genre).value_or(Tag()));
    }

    fakes::FakeWorld world;
};

RawTag FullTag() {
    return {.marker = "TAG",
            .song = "title",
            .artist = "artist",
            .album = "album",
            .year = "1999",
            .comment = "the comment",
            .track = 0,
            .genre = 17};
}

TEST_F(ReadID3Test, GivesTheNineFieldsOfAVersion10Tag) {
    EXPECT_EQ(RecordOf(SoundFile(FullTag())), "TAG|title|artist|album|1999|the comment|||Rock|");
    EXPECT_THAT(world.host.log, IsEmpty());
}

TEST_F(ReadID3Test, SplitsIntoTenPiecesOfWhichTheLastIsEmpty) {
    const auto pieces = Split(RecordOf(SoundFile(FullTag())), "|");
    ASSERT_EQ(pieces.size(), 10U);
    EXPECT_EQ(pieces[9], "");
}

TEST_F(ReadID3Test, KeepsAllThirtyCharactersOfAVersion10Comment) {
    RawTag tag = FullTag();
    tag.comment = "123456789012345678901234567890";
    EXPECT_EQ(RecordOf(SoundFile(tag)),
              "TAG|title|artist|album|1999|123456789012345678901234567890|||Rock|");
}

TEST_F(ReadID3Test, GivesTheTrackNumberOfAVersion11Tag) {
    RawTag tag = FullTag();
    tag.track = 7;
    EXPECT_EQ(RecordOf(SoundFile(tag)), "TAG|title|artist|album|1999|the comment||7|Rock|");
}

TEST_F(ReadID3Test, GivesEveryTrackNumberUpTo255) {
    RawTag tag = FullTag();
    for (const int number : {1, 9, 10, 99, 100, 255}) {
        tag.track = static_cast<std::uint8_t>(number);
        EXPECT_EQ(Split(RecordOf(SoundFile(tag)), "|")[7], std::to_string(number));
    }
}

TEST_F(ReadID3Test, TakesTwoZeroBytesAtTheCommentsEndForVersion10) {
    RawTag tag = FullTag();
    tag.comment = "1234567890123456789012345678";
    EXPECT_EQ(RecordOf(SoundFile(tag)),
              "TAG|title|artist|album|1999|1234567890123456789012345678|||Rock|");
}

TEST_F(ReadID3Test, TakesALastCommentByteWithoutZeroBeforeItForText) {
    RawTag tag = FullTag();
    tag.comment = std::string(28, 'c') + "d\x07";
    EXPECT_EQ(Split(RecordOf(SoundFile(tag)), "|")[5], std::string(28, 'c') + "d\x07");
    EXPECT_EQ(Split(RecordOf(SoundFile(tag)), "|")[7], "");
}

TEST_F(ReadID3Test, AcceptsAMarkerInAnyLetterCaseAndGivesItAsItStands) {
    RawTag tag = FullTag();
    tag.marker = "tag";
    EXPECT_THAT(RecordOf(SoundFile(tag)), StartsWith("tag|title|"));
    tag.marker = "TaG";
    EXPECT_THAT(RecordOf(SoundFile(tag)), StartsWith("TaG|title|"));
}

TEST_F(ReadID3Test, GivesNothingForAFileWithoutATag) {
    EXPECT_EQ(RecordOf(support::UntaggedSoundFile()), "");
    EXPECT_THAT(world.host.log, IsEmpty());
}

TEST_F(ReadID3Test, GivesNothingForAFileWithOnlyAVersion2Tag) {
    EXPECT_EQ(RecordOf(std::string("ID3\x03\0\0\0\0\0\0", 10) + support::UntaggedSoundFile()), "");
}

TEST_F(ReadID3Test, DoesNotOpenAFileOf128BytesEvenIfTheyAreATag) {
    EXPECT_EQ(RecordOf(TagBytes(FullTag())), "");
    EXPECT_THAT(world.calls.Of({"OpenBinary"}), IsEmpty());
    EXPECT_THAT(world.host.log, IsEmpty());
}

TEST_F(ReadID3Test, ReadsTheTagOfAFileOf129Bytes) {
    EXPECT_EQ(RecordOf("x" + TagBytes(FullTag())),
              "TAG|title|artist|album|1999|the comment|||Rock|");
}

TEST_F(ReadID3Test, GivesNothingForFilesTooShortForATag) {
    EXPECT_EQ(RecordOf(""), "");
    EXPECT_EQ(RecordOf(TagBytes(FullTag()).substr(1)), "");
    EXPECT_THAT(world.host.log, IsEmpty());
}

TEST_F(ReadID3Test, KeepsThePaddingBlanksOfOlderTags) {
    RawTag tag = FullTag();
    tag.song = "title" + std::string(25, ' ');
    EXPECT_EQ(Split(RecordOf(SoundFile(tag)), "|")[1], tag.song);
}

TEST_F(ReadID3Test, GivesAnEmptyGenreWhereTheTableHasNone) {
    RawTag tag = FullTag();
    tag.track = 3;
    tag.genre = 255;
    EXPECT_EQ(RecordOf(SoundFile(tag)), "TAG|title|artist|album|1999|the comment||3||");
}

TEST_F(ReadID3Test, ReadsGenreNumbersAbove127) {
    world.run.GenreNames[200] = "Whistling";
    RawTag tag = FullTag();
    tag.genre = 200;
    EXPECT_EQ(Split(RecordOf(SoundFile(tag)), "|")[8], "Whistling");
}

TEST_F(ReadID3Test, LetsABarInATextShiftThePiecesBehindIt) {
    RawTag tag = FullTag();
    tag.song = "a|b";
    tag.track = 7;
    const auto pieces = Split(RecordOf(SoundFile(tag)), "|");
    EXPECT_THAT(pieces, ElementsAre("TAG", "a", "b", "artist", "album", "1999", "the comment", "",
                                    "7", "Rock", ""));
}

TEST_F(ReadID3Test, KeepsControlBytesOfATag) {
    RawTag tag = FullTag();
    tag.song = "a\x01\r\nb";
    EXPECT_EQ(Split(RecordOf(SoundFile(tag)), "|")[1], "a\x01\r\nb");
}

TEST_F(ReadID3Test, TellsTheGenreByItsNumberWhereThatIsAskedFor) {
    world.files.AddFile(Path, SoundFile(FullTag()));
    EXPECT_EQ(Record(GenreAs::Number), "TAG|title|artist|album|1999|the comment|||17|");
}

TEST_F(ReadID3Test, DoesNotLookAgainAtAFileThatWasJustListed) {
    world.files.AddFile(Path, SoundFile(FullTag()));
    const FileEntry file = world.files.GetFile(Path);
    EXPECT_EQ(ReadID3(world.run, file), ReadID3(world.run, Path));
    EXPECT_EQ(ReadID3(world.run, {.path = Path, .name = "x.mp3", .size = TagSize, .modified = {}}),
              Tag());
}

TEST_F(ReadID3Test, TellsNoTagFromOneThatCannotBeRead) {
    world.files.AddFile(Path, support::UntaggedSoundFile());
    EXPECT_EQ(ReadID3(world.run, Path), Tag());
    world.calls.Refuse("OpenBinary " + std::string(Path), FailureNumber::PermissionDenied, Path);
    EXPECT_EQ(ReadID3(world.run, Path), std::nullopt);
}

TEST_F(ReadID3Test, LogsAMissingFileOnce) {
    EXPECT_EQ(Record(), "");
    EXPECT_THAT(world.host.log,
                ElementsAre(R"(Quillon: Read ID3 File Error: Line 2 File not found: )" +
                            std::string(Path)));
}

TEST_F(ReadID3Test, LogsAnUnreadableFileOnce) {
    world.calls.Refuse("OpenBinary " + std::string(Path), FailureNumber::PermissionDenied, Path);
    EXPECT_EQ(RecordOf(SoundFile(FullTag())), "");
    EXPECT_THAT(world.host.log,
                ElementsAre("Quillon: Read ID3 File Error: Line 3 Permission denied: " +
                            std::string(Path)));
}

/// A file whose bytes cannot all be read.
class FailingReader : public BinaryReader {
  public:
    FailingReader(std::string bytes, std::size_t badByte)
        : bytes_(std::move(bytes)), badByte_(badByte) {}
    std::uint64_t Size() const override { return bytes_.size(); }
    void SetPosition(std::uint64_t position) override { position_ = position; }
    std::size_t ReadInto(std::span<std::uint8_t> bytes) override {
        if (position_ <= badByte_ && badByte_ < position_ + bytes.size())
            throw Failure(FailureNumber::PathFileAccess, Path);
        const std::string piece = bytes_.substr(position_, bytes.size());
        position_ += piece.size();
        std::ranges::copy(piece, bytes.begin());
        return piece.size();
    }

  private:
    std::string bytes_;
    std::size_t badByte_;
    std::size_t position_ = 0;
};

/// A file system whose files are read through readers of the test's own making.
class FilesWithReader : public fakes::FakeFiles {
  public:
    using FakeFiles::FakeFiles;
    std::unique_ptr<BinaryReader> OpenBinary(std::string_view) override {
        return std::move(reader);
    }
    std::unique_ptr<BinaryReader> reader;
};

class ReadID3FailureTest : public ::testing::Test {
  protected:
    ReadID3FailureTest() { run.GenreNames[17] = "Rock"; }

    /// The record when the tag's byte at `badOffset` cannot be read.
    std::string RecordWithBadByte(std::size_t badOffset) {
        const std::string content = SoundFile(FullTag());
        files.AddFile(Path, content);
        files.reader = std::make_unique<FailingReader>(
            content, content.size() - support::TagBytes({}).size() + badOffset);
        return TagRecord(ReadID3(run, Path).value_or(Tag()));
    }

    fakes::Calls calls;
    fakes::FakeHost host{calls};
    FilesWithReader files{calls};
    fakes::FakeClock clock;
    fakes::FakeWindow window{calls};
    quillon::Run run{host, files, clock, window};
};

TEST_F(ReadID3FailureTest, GivesNoTagOfWhichAByteCannotBeReadAndLogsItOnce) {
    for (const std::size_t badOffset : {0U, 3U, 93U, 97U, 127U}) {
        host.log.clear();
        EXPECT_EQ(RecordWithBadByte(badOffset), "");
        EXPECT_THAT(host.log, ElementsAre("Quillon: Read ID3 File Error: Line 4 "
                                          "Path/File access error: " +
                                          std::string(Path)));
    }
}

TEST_F(ReadID3FailureTest, LogsAFileThatShrankSinceItWasListed) {
    files.AddFile(Path, SoundFile(FullTag()));
    files.reader = std::make_unique<FailingReader>("short now", 1000);
    EXPECT_EQ(ReadID3(run, Path), std::nullopt);
    EXPECT_THAT(host.log, ElementsAre("Quillon: Read ID3 File Error: Line 3 "
                                      "Input past end of file: " +
                                      std::string(Path)));
}

}  // namespace
}  // namespace quillon
