#include <algorithm>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>

#include "platform/basic_text.h"
#include "tests/tags/write_tag_fixture.h"

namespace quillon {
namespace {

using support::RawTag;
using support::SoundFile;
using support::TagBytes;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

constexpr std::size_t YearOffset = 93, TrackOffset = 126, GenreOffset = 127;

TEST_F(WriteTagTest, WritesTheNinePiecesOverTheOldTag) {
    EXPECT_TRUE(Write("TAG|title|artist|album|2001|comment||7|Rock"));
    EXPECT_EQ(Record(), "TAG|title|artist|album|2001|comment||7|Rock|");
    EXPECT_EQ(WrittenTag(), TagBytes({.marker = "TAG",
                                      .song = "title",
                                      .artist = "artist",
                                      .album = "album",
                                      .year = "2001",
                                      .comment = "comment",
                                      .track = 7,
                                      .genre = 17}));
    EXPECT_EQ(Content(), SoundFile(OldTag()).substr(0, Content().size() - TagSize) + WrittenTag());
    EXPECT_THAT(Log(), IsEmpty());
}

TEST_F(WriteTagTest, KeepsTheSizeOfAFileWithATag) {
    const std::size_t size = Content().size();
    Write("TAG|title|artist|album|2001|comment||7|Rock");
    EXPECT_EQ(Content().size(), size);
}

TEST_F(WriteTagTest, MakesAFileOf2000BytesWithoutTagOneOf2128) {
    const std::string audio(2000, 'a');
    library.files.AddFile(Path, audio);
    EXPECT_TRUE(Write("TAG|title|artist|album|2001|comment||7|Rock"));
    EXPECT_EQ(Content().size(), 2128U);
    EXPECT_EQ(Content().substr(0, 2000), audio);
    EXPECT_EQ(Record(), "TAG|title|artist|album|2001|comment||7|Rock|");
}

TEST_F(WriteTagTest, KeepsTheSizeOfAFileOf2000BytesWithATag) {
    library.files.AddFile(Path, std::string(2000 - TagSize, 'a') + TagBytes(OldTag()));
    EXPECT_TRUE(Write("TAG|title|artist|album|2001|comment||7|Rock"));
    EXPECT_EQ(Content().size(), 2000U);
}

TEST_F(WriteTagTest, AppendsToAFileThatIsNothingButATagAsTheReaderSeesNone) {
    library.files.AddFile(Path, TagBytes(OldTag()));
    EXPECT_TRUE(Write("TAG|title||||||7|Rock"));
    EXPECT_EQ(Content().substr(0, TagSize), TagBytes(OldTag()));
    EXPECT_EQ(Content().size(), 2 * TagSize);
}

TEST_F(WriteTagTest, AppendsToShortAndEmptyFiles) {
    for (const std::string& content : {std::string(), std::string("x"), std::string(127, 'x')}) {
        library.files.AddFile(Path, content);
        EXPECT_TRUE(Write("TAG|title||||||7|Rock"));
        EXPECT_EQ(Content().substr(0, content.size()), content);
        EXPECT_EQ(Content().size(), content.size() + TagSize);
    }
}

TEST_F(WriteTagTest, ReplacesATagWhoseMarkerIsInLowerCase) {
    RawTag tag = OldTag();
    tag.marker = "tag";
    library.files.AddFile(Path, SoundFile(tag));
    EXPECT_TRUE(Write("TAG|title|artist|album|2001|comment||7|Rock"));
    EXPECT_EQ(Content().size(), SoundFile(tag).size());
    EXPECT_EQ(WrittenTag().substr(0, 3), "TAG");
}

TEST_F(WriteTagTest, LeavesWhateverLiesBeforeTheTag) {
    const std::string before = "ID3\x03" + std::string(200, 'h') + "audio" + "APETAGEX" +
                               std::string(32, 'p') + "LYRICSEND000010LYRICS200";
    library.files.AddFile(Path, before + TagBytes(OldTag()));
    EXPECT_TRUE(Write("TAG|title|artist|album|2001|comment||7|Rock"));
    EXPECT_EQ(Content(), before + WrittenTag());
    library.files.AddFile(Path, before);
    EXPECT_TRUE(Write("TAG|title|artist|album|2001|comment||7|Rock"));
    EXPECT_EQ(Content(), before + WrittenTag());
}

TEST_F(WriteTagTest, WritesAnEmptyTitleAs30ZeroBytes) {
    Write("TAG||artist|album|2001|comment||7|Rock");
    EXPECT_EQ(WrittenTag().substr(3, 30), std::string(30, '\0'));
}

TEST_F(WriteTagTest, CutsATitleOf35Characters) {
    Write("TAG|12345678901234567890123456789012345|artist|album|2001|comment||7|Rock");
    EXPECT_EQ(WrittenTag().substr(3, 30), "123456789012345678901234567890");
    EXPECT_EQ(WrittenTag().substr(33, 7), std::string("artist\0", 7));
}

TEST_F(WriteTagTest, PadsATwoDigitYearWithZeroBytes) {
    Write("TAG|title|artist|album|99|comment||7|Rock");
    EXPECT_EQ(WrittenTag().substr(YearOffset, 4), std::string("99\0\0", 4));
}

TEST_F(WriteTagTest, CutsACommentAt28Bytes) {
    Write("TAG|title|artist|album|2001|123456789012345678901234567890||7|Rock");
    EXPECT_EQ(Record(), "TAG|title|artist|album|2001|1234567890123456789012345678||7|Rock|");
}

TEST_F(WriteTagTest, WritesTrack7AsAByteBehindAZeroByte) {
    Write("TAG|title|artist|album|2001|comment||7|Rock");
    EXPECT_EQ(WrittenTag().substr(TrackOffset - 1, 2), std::string("\0\x07", 2));
}

TEST_F(WriteTagTest, WritesATrackThatIsNoNumberAsTwoZeroBytes) {
    for (const std::string track : {"", "x", "7a", "one"}) {
        EXPECT_TRUE(Write("TAG|title|artist|album|2001|comment||" + track + "|Rock"));
        EXPECT_EQ(WrittenTag().substr(TrackOffset - 1, 2), std::string(2, '\0'));
        EXPECT_EQ(Split(Record(), "|")[7], "");
    }
    EXPECT_THAT(Log(), IsEmpty());
}

TEST_F(WriteTagTest, WritesTracksUpTo255) {
    EXPECT_TRUE(Write("TAG|title|artist|album|2001|comment||255|Rock"));
    EXPECT_EQ(Split(Record(), "|")[7], "255");
    EXPECT_TRUE(Write("TAG|title|artist|album|2001|comment||0|Rock"));
    EXPECT_EQ(Split(Record(), "|")[7], "");
    EXPECT_TRUE(Write("TAG|title|artist|album|2001|comment|| 12 |Rock"));
    EXPECT_EQ(Split(Record(), "|")[7], "12");
}

TEST_F(WriteTagTest, RefusesATrackThatNoByteHolds) {
    const std::string before = Content();
    for (const std::string track : {"256", "-1", "99999", "1e300"}) {
        library.host.log.clear();
        EXPECT_FALSE(Write("TAG|title|artist|album|2001|comment||" + track + "|Rock"));
        EXPECT_THAT(Log(), ElementsAre("Quillon: WriteID3 Management Line 3 No byte for track \"" +
                                       track + "\": " + Path));
    }
    EXPECT_EQ(Content(), before);
}

TEST_F(WriteTagTest, RefusesATagWithABarInAField) {
    const std::string before = Content();
    for (const TagField& field : TagFields) {
        library.host.log.clear();
        Tag tag = support::TagOfRecord("TAG|title|artist|album|2001|comment||7|Rock");
        tag.*field.text += '|';
        EXPECT_FALSE(WriteTag(library.run, Path, tag)) << field.label;
        EXPECT_THAT(Log(), ElementsAre("Quillon: WriteID3 Management Line 1 Record of 10 pieces "
                                       "instead of 9: " +
                                       std::string(Path)));
    }
    EXPECT_EQ(Content(), before);
    EXPECT_THAT(Writes(), IsEmpty());
}

TEST_F(WriteTagTest, FindsAGenresNumberByItsNameWhateverTheLetterCase) {
    Write("TAG|title|artist|album|2001|comment||7|rOcK");
    EXPECT_EQ(WrittenTag()[GenreOffset], 17);
    library.Execute("INSERT INTO SpinnerGenre (GenreID, Genre) VALUES (200, \"Whistling\")");
    Write("TAG|title|artist|album|2001|comment||7|Whistling");
    EXPECT_EQ(WrittenTag()[GenreOffset], '\xC8');
    Write("TAG|title|artist|album|2001|comment||7|Blues");
    EXPECT_EQ(WrittenTag()[GenreOffset], '\0');
}

TEST_F(WriteTagTest, KeepsTheGenreByteForANameWithoutNumberAndSaysSo) {
    EXPECT_TRUE(Write("TAG|title|artist|album|2001|comment||7|Snoring"));
    EXPECT_EQ(WrittenTag()[GenreOffset], 40);
    EXPECT_EQ(Split(Record(), "|")[1], "title");
    EXPECT_THAT(Log(), ElementsAre("Quillon: WriteID3 Management Line 2 No number for genre "
                                   "\"Snoring\": " +
                                   std::string(Path)));
}

TEST_F(WriteTagTest, WritesNoGenreForANameWithoutNumberWhereThereWasNoTag) {
    library.files.AddFile(Path, support::UntaggedSoundFile());
    EXPECT_TRUE(Write("TAG|title|artist|album|2001|comment||7|Snoring"));
    EXPECT_EQ(WrittenTag()[GenreOffset], '\xFF');
    EXPECT_EQ(Log().size(), 1U);
}

TEST_F(WriteTagTest, KeepsTheGenreByteWhenTheRecordNamesNone) {
    library.Execute("INSERT INTO SpinnerGenre (GenreID, Genre) VALUES (201, \"\")");
    EXPECT_TRUE(Write("TAG|title|artist|album|2001|comment||7|"));
    EXPECT_EQ(WrittenTag()[GenreOffset], 40);
    library.files.AddFile(Path, support::UntaggedSoundFile());
    EXPECT_TRUE(Write("TAG|title|artist|album|2001|comment||7|"));
    EXPECT_EQ(WrittenTag()[GenreOffset], '\xFF');
    EXPECT_THAT(Log(), IsEmpty());
}

TEST_F(WriteTagTest, KeepsTheGenreByteForANumberBeyondAByte) {
    library.Execute("INSERT INTO SpinnerGenre (GenreID, Genre) VALUES (256, \"Too far\")");
    EXPECT_TRUE(Write("TAG|title|artist|album|2001|comment||7|Too far"));
    EXPECT_EQ(WrittenTag()[GenreOffset], 40);
    EXPECT_EQ(Log().size(), 1U);
}

TEST_F(WriteTagTest, KeepsTheGenreByteForANameThatHoldsAQuote) {
    EXPECT_TRUE(Write("TAG|title|artist|album|2001|comment||7|12\" Rock"));
    EXPECT_EQ(WrittenTag()[GenreOffset], 40);
    EXPECT_EQ(Log().size(), 1U);
}

TEST_F(WriteTagTest, WritesTheRestWhenTheGenreTableCannotBeRead) {
    library.Database().Refuse("SpinnerGenre");
    EXPECT_TRUE(Write("TAG|title|artist|album|2001|comment||7|Rock"));
    EXPECT_EQ(WrittenTag()[GenreOffset], 40);
    EXPECT_THAT(
        Log(),
        ElementsAre("Quillon: Read ID3 File Error: Line 10 refused (" + std::string(Path) + ")",
                    "Quillon: WriteID3 Management Line 2 refused (" + std::string(Path) + ")"));
}

TEST_F(WriteTagTest, RefusesACharacterThatTheCodePageLacks) {
    const std::string before = Content();
    EXPECT_FALSE(Write("TAG|\u4E2D\u6587|artist|album|2001|comment||7|Rock"));
    EXPECT_EQ(Content(), before);
    EXPECT_THAT(Log(), ElementsAre("Quillon: WriteID3 Management Line 5 No bytes for Song "
                                   "\"\u4E2D\u6587\": " +
                                   std::string(Path)));
    EXPECT_THAT(Writes(), IsEmpty());
}

TEST_F(WriteTagTest, WritesCharactersOfTheCodePage) {
    EXPECT_TRUE(Write("TAG|Caf\u00E9 \u20AC|artist|album|2001|comment||7|Rock"));
    EXPECT_EQ(WrittenTag().substr(3, 7), std::string("Caf\xE9 \x80\0", 7));
    EXPECT_EQ(Split(Record(), "|")[1], "Caf\u00E9 \u20AC");
}

TEST_F(WriteTagTest, DoesNotWriteATagThatIsThereAlready) {
    EXPECT_TRUE(Write("TAG|title|artist|album|2001|comment||7|Rock"));
    library.calls.Forget();
    EXPECT_TRUE(Write("TAG|title|artist|album|2001|comment||7|Rock"));
    EXPECT_THAT(Writes(), IsEmpty());
}

TEST_F(WriteTagTest, LogsAFileThatIsMissing) {
    library.files.DeleteFile(Path);
    EXPECT_FALSE(Write("TAG|title|artist|album|2001|comment||7|Rock"));
    EXPECT_THAT(Log(), ElementsAre("Quillon: WriteID3 Management Line 4 File not found: " +
                                   std::string(Path)));
}

TEST_F(WriteTagTest, NeverAppendsToAFileThatCannotBeRead) {
    const std::string before = Content();
    library.calls.Refuse("OpenBinary " + std::string(Path), FailureNumber::PermissionDenied, Path);
    EXPECT_FALSE(Write("TAG|title|artist|album|2001|comment||7|Rock"));
    EXPECT_EQ(Content(), before);
    EXPECT_EQ(Log().size(), 1U);
}

TEST_F(WriteTagTest, LogsAFileThatCannotBeWritten) {
    library.calls.Refuse("WriteEnd " + std::string(Path), FailureNumber::PermissionDenied, Path);
    EXPECT_FALSE(Write("TAG|title|artist|album|2001|comment||7|Rock"));
    EXPECT_THAT(Log(), ElementsAre("Quillon: WriteID3 Management Line 6 Permission denied: " +
                                   std::string(Path)));
}

/// What becomes of a file between reading and writing its end.
class FileThatChangesTest : public WriteTagTest {
  protected:
    /// Writes with the end read before the file became `content`.
    void ExpectUntouched(const std::string& content) {
        library.files.AddFile(Path, SoundFile(OldTag()));
        const FileEnd end = ReadTagEnd(library.files, Path);
        library.files.AddFile(Path, content);
        library.host.log.clear();
        EXPECT_FALSE(
            WriteTag(library.run, Path, end, support::TagOfRecord("TAG|title||||||7|Rock")));
        EXPECT_EQ(Content(), content);
        EXPECT_THAT(Log(), ElementsAre("Quillon: WriteID3 Management Line 6 Path/File access "
                                       "error: " +
                                       std::string(Path)));
    }
};

TEST_F(FileThatChangesTest, IsUntouchedAndLogged) {
    ExpectUntouched("shrunk");
    ExpectUntouched("");
    ExpectUntouched(SoundFile(OldTag()) + "grown");
    RawTag other = OldTag();
    other.song = "by another program";
    ExpectUntouched(SoundFile(other));
}

TEST_F(FileThatChangesTest, IsLoggedWhenItHasVanished) {
    const FileEnd end = ReadTagEnd(library.files, Path);
    library.files.DeleteFile(Path);
    EXPECT_FALSE(WriteTag(library.run, Path, end, support::TagOfRecord("TAG|title||||||7|Rock")));
    EXPECT_THAT(Log(), ElementsAre("Quillon: WriteID3 Management Line 6 File not found: " +
                                   std::string(Path)));
}

/// The module's own reader.
class ReadTagTest : public WriteTagTest {
  protected:
    std::string RecordOf(const std::string& content) {
        library.files.AddFile(Path, content);
        return TagRecord(ReadTag(library.run, Path, ReadTagEnd(library.files, Path)));
    }
};

TEST_F(ReadTagTest, GivesTheRecordThatReadID3Gives) {
    library.run.GenreNames[40] = "AlternRock";
    library.Execute("UPDATE SpinnerGenre SET Genre = \"AlternRock\" WHERE GenreID = 40");
    RawTag barred = OldTag();
    barred.song = "a|b";
    RawTag blanks = OldTag();
    blanks.comment = "blank  padded" + std::string(17, ' ');
    blanks.track = 0;
    for (const std::string& content :
         {SoundFile(OldTag()), SoundFile(barred), SoundFile(blanks), TagBytes(OldTag()),
          "x" + TagBytes(OldTag()), support::UntaggedSoundFile(), std::string(),
          std::string("TAG")}) {
        const std::string record = RecordOf(content);
        EXPECT_EQ(record, Record());
    }
}

TEST_F(ReadTagTest, TakesTheGenresNameFromTheTableAsItIsNow) {
    library.Execute("UPDATE SpinnerGenre SET Genre = \"Renamed\" WHERE GenreID = 40");
    EXPECT_EQ(Split(RecordOf(SoundFile(OldTag())), "|")[8], "Renamed");
    library.Execute("DELETE * FROM SpinnerGenre WHERE GenreID = 40");
    EXPECT_EQ(Split(RecordOf(SoundFile(OldTag())), "|")[8], "");
}

TEST_F(ReadTagTest, LeavesTheGenreOutWhenTheTableCannotBeRead) {
    library.Database().Refuse("SpinnerGenre");
    EXPECT_EQ(RecordOf(SoundFile(OldTag())),
              "TAG|old title|old artist|old album|1999|old comment||3||");
    EXPECT_THAT(Log(), ElementsAre("Quillon: Read ID3 File Error: Line 10 refused (" +
                                   std::string(Path) + ")"));
}

}  // namespace
}  // namespace quillon
