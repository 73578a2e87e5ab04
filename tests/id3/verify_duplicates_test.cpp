#include "playlists/capture.h"
#include "playlists/refresh.h"
#include "tests/id3/verify_fixture.h"

/// Files that go as duplicates: how many at once, which of them, and what becomes of what is known
/// of them.
namespace quillon {
namespace {

using support::RawTag;
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::SizeIs;

class VerifyDuplicatesTest : public VerifyTest {
  protected:
    /// A file of this title and so many that have it in their tags.
    void AddDuplicates(int count, const std::string& title = "Dusk") {
        AddTrack("Alder - " + title + ".mp3", title, TagOf(title));
        for (int i = 1; i <= count; ++i) {
            const std::string name = title + " copy " + std::to_string(i);
            AddTrack("(" + name + ").mp3", name, TagOf(title));
        }
    }
    std::vector<std::string> Removals() {
        return library.calls.Of({"DeleteFile " + std::string(support::TestLibrary::Root)});
    }
    std::vector<std::string> Paths() {
        return library.Rows("SELECT SoundFile FROM Tracks ORDER BY ID");
    }
};

TEST_F(VerifyDuplicatesTest, AreToldWithBothNames) {
    AddDuplicates(1);
    Verify();
    EXPECT_THAT(library.host.log, ElementsAre("Quillon: " + PathOf("(Dusk copy 1).mp3") +
                                              " was removed as a duplicate of Alder - Dusk.mp3"));
    EXPECT_EQ(library.run.counts.filesRemoved, 1U);
    EXPECT_THAT(library.run.removals.Of(Removable::MusicFiles).names,
                ElementsAre(PathOf("(Dusk copy 1).mp3")));
}

TEST_F(VerifyDuplicatesTest, AreAllRemovedOrNone) {
    AddDuplicates(2);
    library.AddAlbumRow("252E671073EC0002", "Birch", "Bark", 3);
    for (const char* name : {"Birch - x.mp3", "1.mp3"}) {
        library.AddFile(std::string(R"(Birch\Bark\)") + name, TagOf("x"));
        library.AddTrackRow("252E671073EC0002", 1,
                            std::string(support::TestLibrary::Root) + R"(Birch\Bark\)" + name);
    }
    library.run.removals.limits.MaxRemovedFiles = 2;
    Reconcile();
    EXPECT_THAT(Removals(), IsEmpty());
    EXPECT_THAT(Names(), SizeIs(3));
    EXPECT_THAT(Paths(), SizeIs(5));
    EXPECT_TRUE(library.run.removals.Braked());
    EXPECT_EQ(library.run.counts.errors, 1U);
    EXPECT_THAT(library.host.log,
                Contains(HasSubstr("Nothing is removed: 3 music files would go, beyond "
                                   "MaxRemovedFiles=2 in host.ini. It would be " +
                                   PathOf("(Dusk copy 1).mp3"))));
}

TEST_F(VerifyDuplicatesTest, AreRemovedWhereTheRunMayRemoveThem) {
    AddDuplicates(3);
    library.run.removals.limits.MaxRemovedFiles = 2;
    library.run.removals.allAllowed = true;
    Reconcile();
    EXPECT_THAT(Names(), ElementsAre("Alder - Dusk.mp3"));
    EXPECT_THAT(Tracks(), ElementsAre("Alder - Dusk.mp3|Dusk|1|1"));
}

TEST_F(VerifyDuplicatesTest, StayWhereTheRunIsBrakedAlready) {
    AddDuplicates(1);
    library.run.removals.Allow(
        library.run, {.kind = Removable::Tracks, .names = {"x"}, .doubt = "something is odd"});
    Verify();
    EXPECT_THAT(Removals(), IsEmpty());
    EXPECT_THAT(Names(), SizeIs(2));
}

TEST_F(VerifyDuplicatesTest, StayWhereTheRunIsAborted) {
    AddDuplicates(1);
    library.AddFolder("Birch");
    library.window.PressAbortWhen(
        [](const FormState& state) { return state.aItem.starts_with("2."); });
    Verify();
    EXPECT_THAT(Removals(), IsEmpty());
}

TEST_F(VerifyDuplicatesTest, GoOnlyWhenAllAlbumsHaveBeenLookedAt) {
    AddDuplicates(1);
    library.AddFile(R"(Birch\Bark\1.mp3)", TagOf("x"));
    Verify();
    const auto calls = library.calls.Of({"MoveFile", "DeleteFile"});
    ASSERT_THAT(calls, SizeIs(2));
    EXPECT_THAT(calls[0], HasSubstr("MoveFile"));
    EXPECT_THAT(calls[1], HasSubstr("DeleteFile"));
}

TEST_F(VerifyDuplicatesTest, StayWhereTheOtherFileHasVanished) {
    AddDuplicates(1);
    library.AddFile(R"(Birch\Bark\1.mp3)", TagOf("x"));
    library.Database().BeforeStatement(
        "Flush", [this] { library.RemoveFile(Album + std::string("Alder - Dusk.mp3")); });
    Verify();
    EXPECT_THAT(Names(), ElementsAre("(Dusk copy 1).mp3"));
    EXPECT_THAT(library.host.log, Contains("Quillon: " + PathOf("(Dusk copy 1).mp3") +
                                           " stays, since there is no Alder - Dusk.mp3"));
}

// [Removed] OnlyIdentical.

class IdenticalDuplicatesTest : public VerifyDuplicatesTest {
  protected:
    IdenticalDuplicatesTest() { library.host.Set("OnlyIdentical", "1"); }
    void AddOtherSound(const std::string& name, const std::string& title, const RawTag& tag) {
        library.files.AddFile(PathOf(name), "another sound" + support::SoundFile(tag));
        AddRow(name, title);
    }
};

TEST_F(IdenticalDuplicatesTest, GoWhereTheirSoundIsTheSame) {
    AddDuplicates(1);
    Reconcile();
    EXPECT_THAT(Names(), ElementsAre("Alder - Dusk.mp3"));
}

TEST_F(IdenticalDuplicatesTest, StayWithALineInTheLogWhereItIsAnother) {
    AddTrack("Alder - Dusk.mp3", "Dusk", TagOf("Dusk", 1));
    AddOtherSound("x.mp3", "x", TagOf("Dusk", 2));
    Reconcile();
    EXPECT_THAT(Names(), ElementsAre("Alder - Dusk.mp3", "x.mp3"));
    EXPECT_THAT(Tracks(), ElementsAre("Alder - Dusk.mp3|Dusk|1|1", "x.mp3|x|2|2"));
    EXPECT_THAT(library.host.log,
                ElementsAre("Quillon: " + PathOf("x.mp3") +
                            " stays: by name or tag it is the same song as Alder - Dusk.mp3, but "
                            "its sound is another"));
    EXPECT_EQ(library.run.counts.errors, 0U);
}

TEST_F(IdenticalDuplicatesTest, DoNotCountForTheBrakeWhereTheyStay) {
    AddTrack("Alder - Dusk.mp3", "Dusk", TagOf("Dusk", 1));
    AddOtherSound("x.mp3", "x", TagOf("Dusk", 2));
    AddTrack("y.mp3", "y", TagOf("Dusk", 3));
    library.run.removals.limits.MaxRemovedFiles = 1;
    Reconcile();
    EXPECT_THAT(Names(), ElementsAre("Alder - Dusk.mp3", "x.mp3"));
}

TEST_F(IdenticalDuplicatesTest, LoseTheirBracketsWhereTheyStay) {
    AddTrack("Alder - Dusk.mp3", "Dusk", TagOf("Dusk", 1));
    AddOtherSound("[x].mp3", "[x]", TagOf("Dusk", 2));
    AddTrack("Alder - (y).mp3", "(y)", TagOf("(y)", 3));
    AddOtherSound("Alder - [y].mp3", "[y]", TagOf("(y)", 4));
    Reconcile();
    EXPECT_THAT(Names(),
                ElementsAre("(x).mp3", "Alder - (y).mp3", "Alder - [y].mp3", "Alder - Dusk.mp3"));
}

TEST_F(IdenticalDuplicatesTest, StayWhereTheSoundCannotBeRead) {
    AddDuplicates(1);
    const std::string path = PathOf("Alder - Dusk.mp3");
    library.window.onEvents = [this, path](const FormState&) {
        if (library.calls.Of({"OpenBinary"}).size() == 2)
            library.calls.Refuse("OpenBinary " + path, FailureNumber::PathFileAccess, path);
    };
    library.AddFolder("Birch");
    Verify();
    EXPECT_THAT(Names(), SizeIs(2));
    EXPECT_THAT(library.host.log,
                ElementsAre("Quillon: VerifyID3TagsFolder Line 7 Path/File access error: " + path +
                            " (" + PathOf("(Dusk copy 1).mp3") + ")"));
}

// Playlists.

class DuplicatesInPlaylistsTest : public VerifyDuplicatesTest {
  protected:
    DuplicatesInPlaylistsTest() {
        library.run.settings.PlayListPath = "D:\\Lists\\";
        library.files.AddFolder(R"(D:\Lists)");
    }
    /// A list of the songs of these numbers.
    void AddList(const std::vector<int>& numbers) {
        std::string text = "CDJ Playlist V1.1\r\n";
        for (const int number : numbers)
            text += std::string(Cdjid) + " " + std::to_string(number - 1) + "\r\n";
        library.files.AddFile(R"(D:\Lists\mine.pla)", text);
    }
    void Capture() { CapturePlaylists(library.run); }
    std::vector<std::string> Songs() {
        RefreshPlaylist(library.run);
        std::vector<std::string> songs;
        const std::string text = library.files.Content(R"(D:\Lists\mine.pla)");
        for (std::size_t at = text.find('\n'); at + 1 < text.size(); at = text.find('\n', at + 1)) {
            const int index = std::stoi(text.substr(text.find(' ', at) + 1));
            songs.push_back(
                library.Rows("SELECT Title FROM Tracks WHERE Track=" + std::to_string(index + 1))
                    .at(0));
        }
        return songs;
    }
};

TEST_F(DuplicatesInPlaylistsTest, YieldTheirEntriesToTheFileThatStays) {
    AddTrack("Alder - Dawn.mp3", "Dawn", TagOf("Dawn", 1));
    AddTrack("Alder - Dusk.mp3", "Dusk", TagOf("Dusk", 2));
    AddTrack("x.mp3", "x", TagOf("Dusk", 3));
    AddList({3, 1});
    Capture();
    Reconcile();
    EXPECT_THAT(Names(), ElementsAre("Alder - Dawn.mp3", "Alder - Dusk.mp3"));
    EXPECT_THAT(Songs(), ElementsAre("Dusk", "Dawn"));
}

TEST_F(DuplicatesInPlaylistsTest, YieldThemBeforeTheyGo) {
    AddTrack("Alder - Dusk.mp3", "Dusk", TagOf("Dusk", 2));
    AddTrack("x.mp3", "x", TagOf("Dusk", 3));
    AddList({2});
    Capture();
    const std::string snapshot = R"(D:\Data\jukebox.mdb.playlists)";
    const std::string before = library.files.Content(snapshot);
    library.calls.Refuse("CreateText " + snapshot, FailureNumber::DiskFull, snapshot);
    Verify();
    EXPECT_THAT(Removals(), IsEmpty());
    EXPECT_EQ(library.files.Content(snapshot), before);
}

TEST_F(DuplicatesInPlaylistsTest, KeepTheirEntriesWhereTheyCannotGo) {
    AddTrack("Alder - Dusk.mp3", "Dusk", TagOf("Dusk", 1));
    AddTrack("x.mp3", "x", TagOf("Dusk", 2));
    AddList({2});
    library.calls.Refuse("DeleteFile " + PathOf("x.mp3"), FailureNumber::PermissionDenied,
                         PathOf("x.mp3"));
    Capture();
    const std::string snapshot = library.files.Content(R"(D:\Data\jukebox.mdb.playlists)");
    Reconcile();
    EXPECT_EQ(library.files.Content(R"(D:\Data\jukebox.mdb.playlists)"), snapshot);
    EXPECT_THAT(Songs(), ElementsAre("x"));
}

TEST_F(DuplicatesInPlaylistsTest, YieldThemForGoodWhenTheRunIsKilledAfterwards) {
    AddTrack("Alder - Dusk.mp3", "Dusk", TagOf("Dusk", 1));
    AddTrack("x.mp3", "x", TagOf("Dusk", 2));
    AddList({2});
    Capture();
    Verify();
    // All that a next run has of this one.
    library.run.playlistEntries = {};
    Capture();
    Reconcile();
    EXPECT_THAT(Songs(), ElementsAre("Dusk"));
}

TEST_F(DuplicatesInPlaylistsTest, TakeTheirRowToAFileThatHasNone) {
    AddFile("Alder - Dusk.mp3", TagOf("Dusk", 1));
    AddTrack("x.mp3", "x", TagOf("Dusk", 1));
    AddList({1});
    Capture();
    library.Database().Refuse("Flush");
    Verify();
    EXPECT_THAT(Removals(), IsEmpty());
    EXPECT_THAT(Tracks(), ElementsAre("x.mp3|x|1|1"));
}

}  // namespace
}  // namespace quillon
