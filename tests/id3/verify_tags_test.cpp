#include "tests/id3/verify_fixture.h"

/// What the comparison walks over and what it notes.
namespace quillon {
namespace {

using support::RawTag;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::StartsWith;

using VerifyTagsTest = VerifyTest;

TEST_F(VerifyTagsTest, NotesNothingWhereTagNamesAndDatabaseAgree) {
    AddTrack("Alder - Dawn.mp3", "Dawn", TagOf("Dawn"));
    Verify();
    EXPECT_THAT(Differences(), IsEmpty());
    EXPECT_THAT(library.host.log, IsEmpty());
    EXPECT_EQ(library.Faults(), "");
}

TEST_F(VerifyTagsTest, NotesEveryValueOfADifference) {
    RawTag tag = TagOf("Dawn");
    tag.artist = "  Aldes ";
    AddTrack("Alder - Dawn.mp3", "Dawn", tag);
    Verify();
    EXPECT_THAT(library.Rows("SELECT * FROM SpinnerID3Differences"),
                ElementsAre("11/15/2026 5:38:55 AM|Artist|Aldes|Alder|Alder|First Light|Dawn"));
}

TEST_F(VerifyTagsTest, ComparesTheTitleWithTheNameWithoutArtistAndEnding) {
    AddFile("Dawn.mp3", TagOf("Dawn"));
    AddFile("Alder - Alder - Noon.mp3.mp3", TagOf("Noon"));
    AddFile("Alder - Dusk.MP3", TagOf("Dusk"));
    Verify();
    EXPECT_THAT(Differences(), IsEmpty());
}

TEST_F(VerifyTagsTest, TakesATitleCutAtThirtyCharactersForTheSame) {
    const std::string title = "A title that is longer than thirty characters";
    AddFile("Alder - " + title + ".mp3", TagOf(title));
    Verify();
    EXPECT_THAT(Differences(), IsEmpty());
    EXPECT_THAT(Names(), ElementsAre("Alder - " + title + ".mp3"));
}

TEST_F(VerifyTagsTest, ComparesTheLengthWithTheDatabase) {
    RawTag tag = TagOf("Dawn");
    tag.comment = "Length='181'";
    AddTrack("Alder - Dawn.mp3", "Dawn", tag);
    tag = TagOf("Noon");
    tag.comment = "Length='184'";
    AddTrack("Alder - Noon.mp3", "Noon", tag);
    library.Execute("UPDATE Tracks SET Minutes=3, Seconds=0");
    Verify();
    EXPECT_THAT(Differences(), ElementsAre("Comment|Length=184|Length=180|Noon"));
}

TEST_F(VerifyTagsTest, TakesTheGenreFromTheDictionary) {
    library.run.GenreNames[17] = "Rock";
    SongRow dawn;
    dawn.song = RowText(std::string("AlderFirst LightDawn"));
    library.run.GenreDictionary.Add(dawn, "Folk");
    RawTag tag = TagOf("Dawn");
    tag.genre = 17;
    AddFile("Alder - Dawn.mp3", tag);
    tag.song = "Noon";
    AddFile("Alder - Noon.mp3", tag);
    Verify();
    EXPECT_THAT(Differences(), ElementsAre("Genre|Rock|Folk|Dawn"));
}

TEST_F(VerifyTagsTest, NotesAMissingTrackNumberOfADifferingTag) {
    RawTag tag = TagOf("Dawn", 0);
    tag.album = "Last Light";
    AddFile("Alder - Dawn.mp3", tag);
    AddFile("Alder - Noon.mp3", TagOf("Noon", 0));
    Verify();
    EXPECT_THAT(Differences(),
                ElementsAre("Album|Last Light|First Light|Dawn", "Track Number Missing|||Dawn"));
}

TEST_F(VerifyTagsTest, NeverNotesATrackNumber) {
    AddTrack("Alder - Dawn.mp3", "Dawn", TagOf("Dawn", 9));
    Verify();
    EXPECT_THAT(Differences(), IsEmpty());
}

TEST_F(VerifyTagsTest, PassesOverFilesWithoutATagAndOtherFiles) {
    library.AddFile(R"(Alder\First Light\Alder - Dawn.mp3)");
    library.AddFile(R"(Alder\First Light\[cover].jpg)", TagOf("x"));
    library.AddFile(R"(Alder\loose.mp3)", TagOf("x"));
    library.AddFile(R"(Alder\First Light\Deep\deeper.mp3)", TagOf("x"));
    Verify();
    EXPECT_THAT(Differences(), IsEmpty());
    EXPECT_THAT(library.calls.Of({"MoveFile", "DeleteFile"}), IsEmpty());
}

TEST_F(VerifyTagsTest, ReadsEachFileOnce) {
    AddFile("Alder - Dawn.mp3", TagOf("Dawn"));
    AddFile("Alder - Noon.mp3", TagOf("x"));
    Verify();
    EXPECT_THAT(library.calls.Of({"OpenBinary"}),
                ElementsAre("OpenBinary " + PathOf("Alder - Dawn.mp3"),
                            "OpenBinary " + PathOf("Alder - Noon.mp3")));
}

TEST_F(VerifyTagsTest, ShowsAndCountsTheArtistsOfEachFolderAnew) {
    library.AddFolder("Birch");
    library.files.AddFolder(R"(E:\More\Cedar)");
    library.run.LibraryFolders.push_back({R"(E:\More)", "More"});
    AddFile("Alder - Dawn.mp3", TagOf("Dawn"));
    Verify();
    EXPECT_THAT(library.calls.Of({"Item"}), ElementsAre("Item 1. Verify ID3 for Artist Alder",
                                                        "Item 2. Verify ID3 for Artist Birch",
                                                        "Item 1. Verify ID3 for Artist Cedar"));
}

TEST_F(VerifyTagsTest, LeavesOutExcludedArtistsButCountsThem) {
    library.run.ExcludeEmpty = false;
    library.run.ExcludeList = {"aLDER", " Birch"};
    AddFile("Alder - Dawn.mp3", TagOf("x"));
    library.AddFile(R"(Birch\Bark\y.mp3)", TagOf("y"));
    Verify();
    EXPECT_THAT(library.calls.Of({"Item"}), ElementsAre("Item 1. Verify ID3 for Artist Alder",
                                                        "Item 2. Verify ID3 for Artist Birch"));
    EXPECT_THAT(library.Rows("SELECT Artist FROM SpinnerID3Differences"),
                ElementsAre("Birch", "Birch"));
}

TEST_F(VerifyTagsTest, StopsAtTheNextArtistAfterAnAbort) {
    RawTag other = TagOf("x");
    other.artist = "y";
    AddFile("Alder - Dawn.mp3", TagOf("x"));
    library.AddFile(R"(Birch\Bark\z.mp3)", other);
    library.run.LibraryFolders.push_back(library.run.LibraryFolders.front());
    library.window.PressAbortWhen(
        [](const FormState& state) { return state.aItem.starts_with("2."); });
    Verify();
    EXPECT_THAT(library.Rows("SELECT Artist FROM SpinnerID3Differences"), ElementsAre("Alder"));
    EXPECT_EQ(library.calls.Of({"Item"}).size(), 2U);
}

TEST_F(VerifyTagsTest, GivesAllRowsOfARunOneTime) {
    AddFile("Alder - Dawn.mp3", TagOf("x"));
    library.AddFile(R"(Birch\Bark\z.mp3)", TagOf("y"));
    library.window.onEvents = [this](const FormState&) { library.clock.now.days += 1; };
    Verify();
    EXPECT_THAT(library.Rows("SELECT DISTINCT UpdateTime FROM SpinnerID3Differences"),
                ElementsAre("11/15/2026 5:38:55 AM"));
}

TEST_F(VerifyTagsTest, LogsAMissingLibraryRoot) {
    library.run.settings.LibraryRoot = R"(D:\Gone)";
    Verify();
    EXPECT_THAT(library.host.log,
                ElementsAre(R"(Quillon: Verify ID3 Tags, No folder at library root D:\Gone)"));
    EXPECT_THAT(library.calls.Of({"Item"}), IsEmpty());
}

TEST_F(VerifyTagsTest, LogsFoldersThatCannotBeListedAndGoesOn) {
    library.AddFile(R"(Birch\Bark\x.mp3)", TagOf("x"));
    library.AddFile(R"(Cedar\Cone\Dusk.mp3)", TagOf("Dusk"));
    AddFile("Alder - Dawn.mp3", TagOf("x"));
    library.files.unlistable = {R"(D:\Music\Birch)", R"(D:\Music\Alder\First Light)"};
    Verify();
    EXPECT_THAT(
        library.host.log,
        ElementsAre(
            R"(Quillon: VerifyID3TagsFolder Line 3 Permission denied: D:\Music\Alder\First Light)",
            R"(Quillon: VerifyID3TagsFolder Line 2 Permission denied: D:\Music\Birch)"));
    EXPECT_THAT(library.Rows("SELECT Artist FROM SpinnerID3Differences"),
                ElementsAre("Cedar", "Cedar"));
}

TEST_F(VerifyTagsTest, LogsATableThatCannotBeOpened) {
    AddFile("Alder - Dawn.mp3", TagOf("x"));
    library.Database().Refuse("OpenInserter SpinnerID3Differences");
    Verify();
    EXPECT_THAT(library.host.log, ElementsAre("Quillon: VerifyID3TagsFolder Line 1 refused"));
    EXPECT_THAT(library.calls.Of({"OpenBinary"}), IsEmpty());
}

TEST_F(VerifyTagsTest, LogsARowThatCannotBeStoredWithItsFileAndGoesOn) {
    RawTag tag = TagOf("Dawn", 0);
    tag.artist = "b";
    tag.album = "c";
    AddFile("Alder - Dawn.mp3", tag);
    library.Database().RefuseValue("ID3Value", "b");
    Verify();
    EXPECT_THAT(library.host.log, ElementsAre("Quillon: VerifyID3TagsFolder Line 6 refused (" +
                                              PathOf("Alder - Dawn.mp3") + ")"));
    EXPECT_THAT(Differences(),
                ElementsAre("Album|c|First Light|Dawn", "Track Number Missing|||Dawn"));
}

// A bar shifts all that is behind it; a title or a number from the wrong place would do harm.
TEST_F(VerifyTagsTest, DoesNotCompareARecordWithABarInAField) {
    const RawTag tag = TagOf("Other|wise");
    AddTrack("Alder - Dawn.mp3", "Dawn", tag);
    AddFile("Alder - Noon.mp3", TagOf("Moon"));
    Verify();
    EXPECT_THAT(
        Trouble(),
        ElementsAre("Quillon: VerifyID3TagsFolder Line 5 Subscript out of range: tag record "
                    "of 11 pieces (" +
                    PathOf("Alder - Dawn.mp3") + ")"));
    EXPECT_THAT(Differences(), ElementsAre("Song|Moon|Noon|Noon"));
    EXPECT_THAT(Names(), ElementsAre("Alder - Dawn.mp3", "Alder - Moon.mp3"));
}

TEST_F(VerifyTagsTest, DoesNotCompareATagThatCouldNotBeReadAsAWhole) {
    AddTrack("Alder - Dawn.mp3", "Dawn", TagOf("x"));
    library.calls.Refuse("OpenBinary " + PathOf("Alder - Dawn.mp3"),
                         FailureNumber::PermissionDenied, PathOf("Alder - Dawn.mp3"));
    Verify();
    EXPECT_THAT(library.host.log, ElementsAre("Quillon: Read ID3 File Error: Line 3 Permission "
                                              "denied: " +
                                              PathOf("Alder - Dawn.mp3")));
    EXPECT_THAT(Differences(), IsEmpty());
}

TEST_F(VerifyTagsTest, GoesOnBehindAFileThatVanishedSinceItWasListed) {
    AddFile("Alder - Dawn.mp3", TagOf("x"));
    AddFile("Alder - Noon.mp3", TagOf("Noon"));
    library.files.afterListing = [this] {
        library.RemoveFile(Album + std::string("Alder - Noon.mp3"));
    };
    Verify();
    ASSERT_EQ(Trouble().size(), 1U);
    EXPECT_THAT(Trouble()[0], StartsWith("Quillon: Read ID3 File Error: Line 3 File not "
                                         "found"));
    EXPECT_THAT(Names(), ElementsAre("Alder - x.mp3"));
}

TEST_F(VerifyTagsTest, OfEveryTagByteLeavesTheAlbumsFilesInTheAlbum) {
    for (int byte = 0; byte < 256; ++byte) {
        AddFile("Alder - " + std::to_string(byte) + ".mp3",
                TagOf(std::string(1, static_cast<char>(byte)) + "\\..\\" + std::to_string(byte)));
    }
    Verify();
    EXPECT_EQ(Names().size(), 256U);
    for (const std::string& path : library.files.Everything())
        EXPECT_TRUE(path.starts_with(PathOf("")) || path.ends_with('\\')) << path;
    EXPECT_EQ(library.Faults(), "");
}

}  // namespace
}  // namespace quillon
