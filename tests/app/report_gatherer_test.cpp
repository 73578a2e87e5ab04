#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>

#include "tests/app/report_fixture.h"

namespace quillon {
namespace {

using ::testing::AllOf;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

TEST_F(Report, FoldsWhatChangedByArtist) {
    Add(AddedTrack(1, "Alder", "Dawn"));
    Add(AddedTrack(2, "Birch", "Dusk"));
    Add(Renamed(1, R"(D:\Music\Alder\First\old.mp3)", R"(D:\Music\Alder\First\new.mp3)"));
    End();
    const ReportContent content = Content();
    ASSERT_EQ(content.artists.size(), 2U);
    EXPECT_EQ(Of(content, "Alder", DeedKind::TrackAdded).first.at(0).what, "Dawn");
    EXPECT_EQ(Of(content, "Alder", DeedKind::FileRenamed).first.at(0).what,
              R"(D:\Music\Alder\First\old.mp3 → D:\Music\Alder\First\new.mp3)");
    EXPECT_THAT(Page(),
                HasSubstr("<b>Alder</b><span class=\"soft\">1 track added, 1 file renamed"));
    EXPECT_THAT(Page(), HasSubstr("<b>2</b><span>tracks added</span>"));
}

TEST_F(Report, TellsWhatBecomesOfEachFieldOfATag) {
    const auto tag = [](const std::string& song, char genre) {
        std::string bytes = "TAG" + song;
        bytes.resize(127, '\0');
        bytes += genre;
        return FileContent{.size = bytes.size(), .bytes = bytes};
    };
    Add(FileChange{.number = 1,
                   .kind = FileChange::Kind::EndWritten,
                   .path = R"(D:\Music\Alder\First\a.mp3)",
                   .before = tag("Old", 5),
                   .after = tag("<New>", 17)});
    End();
    EXPECT_THAT(Of(Content(), "Alder", DeedKind::TagWritten).first.at(0).details,
                ElementsAre("Song: Old → <New>", "Genre number: 5 → 17"));
    EXPECT_THAT(Page(), HasSubstr("Song: Old &#8594; &#60;New&#62;"));
}

TEST_F(Report, TellsARenameByWayOfAnotherNameAsOne) {
    Add(Renamed(1, R"(D:\Music\Alder\First\a.mp3)",
                R"(D:\Music\Alder\First\a.quillon-renaming.mp3)"));
    Add(Renamed(2, R"(D:\Music\Alder\First\b.mp3)", R"(D:\Music\Alder\First\a.mp3)"));
    Add(Renamed(3, R"(D:\Music\Alder\First\a.quillon-renaming.mp3)",
                R"(D:\Music\Alder\First\b.mp3)"));
    End();
    EXPECT_EQ(CountOf(DeedKind::FileRenamed), 2U);
    EXPECT_EQ(Of(Content(), "Alder", DeedKind::FileRenamed).first.at(1).what,
              R"(D:\Music\Alder\First\a.mp3 → D:\Music\Alder\First\b.mp3)");
}

TEST_F(Report, TellsOfAnAlbumThatOnlyGetsACoverAsOfACover) {
    const auto album = [](std::int64_t id, std::vector<FieldChange> fields) {
        return RowChange{.table = "Albums", .key = {{"ID", id}}, .fields = std::move(fields)};
    };
    Add(album(1, {{"ImageFile", Null{}, R"(D:\Covers\a.jpg)"}}));
    Add(album(2, {{"ImageFile", Null{}, R"(D:\Covers\b.jpg)"}, {"Title", "a", "b"}}));
    End();
    EXPECT_EQ(CountOf(DeedKind::CoverChanged), 1U);
    EXPECT_EQ(CountOf(DeedKind::AlbumChanged), 1U);
    EXPECT_THAT(Page(), HasSubstr("cover changed"));
}

TEST_F(Report, CountsAnAlbumsImageOnceByWhatItWasAndIs) {
    const auto image = [](std::int64_t id, const Value& before, const Value& after) {
        return RowChange{.table = "Albums",
                         .key = {{"ID", id}},
                         .fields = {{"Title", "a", "b"}, {"ImageFile", before, after}}};
    };
    ReportGatherer gatherer(facts);
    RowChange isNew = image(1, Null{}, "a.jpg");
    isNew.kind = RowChange::Kind::Added;
    gatherer.Note(isNew);
    gatherer.Note(image(2, Null{}, "a.jpg"));
    gatherer.Note(image(2, "a.jpg", "b.jpg"));
    gatherer.Note(image(3, "a.jpg", ""));
    gatherer.Note(image(3, "", "b.jpg"));
    gatherer.Note(image(4, "a.jpg", Null{}));
    gatherer.Note(image(5, "a.jpg", Null{}));
    gatherer.Note(image(5, Null{}, "a.jpg"));
    EXPECT_EQ(gatherer.Covers().added, 0U) << "they are not saved";
    gatherer.Note(RowsSaved{});
    gatherer.Note(image(6, Null{}, "a.jpg"));
    EXPECT_EQ(gatherer.Covers().added, 2U);
    EXPECT_EQ(gatherer.Covers().changed, 1U);
    EXPECT_EQ(gatherer.Covers().removed, 1U);
}

TEST_F(Report, LeavesOutWhatTheRunTookBackItself) {
    const auto page = [](const std::string& name) {
        return FileChange{.kind = FileChange::Kind::Written,
                          .path = R"(H:\HTML\Pages.new\)" + name};
    };
    Add(FileChange{.number = 1,
                   .kind = FileChange::Kind::Copied,
                   .path = R"(E:\new\2.mp3)",
                   .target = R"(D:\M\A\B\2.mp3)"});
    Add(FileChange{.number = 2, .kind = FileChange::Kind::Discarded, .path = R"(D:\M\A\B\2.mp3)"});
    Add(page("index.asp"));
    Add(page("page1.asp"));
    EXPECT_EQ(CountOf(DeedKind::PageWritten), 2U);
    Add(FileChange{
        .number = 5, .kind = FileChange::Kind::FolderDeleted, .path = R"(H:\HTML\Pages.new)"});
    End();
    EXPECT_FALSE(Content().HasChanges());
}

TEST_F(Report, CountsRowsThatAreInTheDatabaseAndFilesThatCameOff) {
    ReportGatherer gatherer(facts);
    gatherer.Note(AddedTrack(1, "Alder", "Dawn"));
    gatherer.Note(RowsSaved{});
    gatherer.Note(AddedTrack(2, "Alder", "Dusk"));
    gatherer.Note(Renamed(1, R"(D:\Music\Alder\First\a.mp3)", R"(D:\Music\Alder\First\b.mp3)"));
    gatherer.Note(Renamed(2, R"(D:\Music\Alder\First\c.mp3)", R"(D:\Music\Alder\First\d.mp3)"));
    gatherer.Note(FileChangeFailed{2, "no"});
    EXPECT_EQ(gatherer.CountOf(DeedKind::TrackAdded), 1U);
    EXPECT_EQ(gatherer.CountOf(DeedKind::FileRenamed), 1U);
    EXPECT_EQ(CountOf(DeedKind::TrackRemoved), 0U);
}

TEST_F(Report, IsNotMadeForWhatIsNoChangeOfTheLibrary) {
    Add(DateReplaced{"SpinnerID3Differences", "UpdateTime", {1}, {2}, 12});
    Add(FileChange{.kind = FileChange::Kind::Written,
                   .path = R"(H:\Data\Quillon\QuillonReconcile.csv)"});
    End();
    EXPECT_FALSE(Content().HasChanges());
}

/// All its rows may have been written anew for one that is new.
TEST_F(Report, TellsOnceThatTheListOfDifferencesIsAnotherOne) {
    for (const char* const field : {"Song", "Genre"}) {
        Add(RowChange{.kind = RowChange::Kind::Added,
                      .table = "SpinnerID3Differences",
                      .key = {{"Field", field}},
                      .fields = {}});
    }
    End();
    EXPECT_TRUE(Content().HasChanges());
    EXPECT_THAT(Page(), AllOf(HasSubstr("1 row of another table"),
                              HasSubstr("<li>Differences between tags and database</li>")));
}

TEST_F(Report, AsksForTheNameOfARowThatItsRecordDoesNotHave) {
    facts.nameOf = [](const std::string& table, std::int64_t id) {
        return RowName{table + " artist", "number " + std::to_string(id)};
    };
    Add(ChangedTrack(7, "Track", std::int64_t{3}, std::int64_t{4}));
    const ReportContent content = Content();
    const DeedList& changed = Of(content, "Tracks artist", DeedKind::TrackChanged);
    EXPECT_EQ(changed.first.at(0).what, "number 7");
    EXPECT_THAT(changed.first.at(0).details, ElementsAre("Track: 3 → 4"));
    facts.nameOf = {};
    EXPECT_EQ(Of(Content(), "", DeedKind::TrackChanged).first.at(0).what, "ID 7");
}

TEST_F(Report, NamesARowThatHasNoNumberByItsKey) {
    facts.nameOf = [](const std::string&, std::int64_t) { return RowName{"Alder", "Dawn"}; };
    RowChange change = ChangedTrack(7, "Track", std::int64_t{3}, std::int64_t{4});
    change.key = {{"Track", std::int64_t{3}}};
    Add(change);
    EXPECT_EQ(Of(Content(), "", DeedKind::TrackChanged).first.at(0).what, "Track 3");
}

TEST_F(Report, TellsOfEachRowOnceWhateverItsNumber) {
    for (const std::int64_t id : {0, 1, 70'000, -5, 2'000'000'000}) {
        Add(AddedTrack(id, "Alder", "Dawn"));
        Add(ChangedTrack(id, "Track", std::int64_t{3}, std::int64_t{4}));
    }
    EXPECT_EQ(CountOf(DeedKind::TrackAdded), 5U);
    EXPECT_EQ(CountOf(DeedKind::TrackChanged), 0U);
}

TEST_F(Report, CountsRowsWithoutANameBehindTheListedOnesWithTheirArtists) {
    facts.nameOf = [](const std::string&, std::int64_t id) {
        return RowName{id > 100 ? "Birch" : "Alder", "Dawn"};
    };
    for (std::int64_t id = 1; id <= 103; ++id)
        Add(ChangedTrack(id, "Track", std::int64_t{3}, std::int64_t{4}));
    const ReportContent content = Content();
    EXPECT_EQ(Of(content, "Alder", DeedKind::TrackChanged).first.size(), 100U);
    EXPECT_EQ(Of(content, "Birch", DeedKind::TrackChanged).count, 3U);
    EXPECT_THAT(Of(content, "Birch", DeedKind::TrackChanged).first, IsEmpty());
}

TEST_F(Report, TellsOfEachRowAndFileOnce) {
    Add(AddedTrack(1, "Alder", "Dawn"));
    Add(ChangedTrack(1, "Track", std::int64_t{0}, std::int64_t{1}));
    Add(ChangedTrack(2, "Track", std::int64_t{0}, std::int64_t{1}));
    Add(ChangedTrack(2, "Track", std::int64_t{1}, std::int64_t{2}));
    for (std::uint64_t i = 1; i < 4; ++i)
        Add(FileChange{.number = i, .kind = FileChange::Kind::Written, .path = R"(H:\P\a.pla)"});
    EXPECT_EQ(CountOf(DeedKind::TrackAdded), 1U);
    EXPECT_EQ(CountOf(DeedKind::TrackChanged), 1U);
    EXPECT_EQ(CountOf(DeedKind::PlaylistWritten), 1U);
}

TEST_F(Report, LeavesOutWhatDidNotComeOffAndWhatARunDoesForItself) {
    Add(Renamed(1, R"(D:\M\A\B\1.mp3)", R"(D:\M\A\B\2.mp3)"));
    Add(FileChangeFailed{1, "Disk full"});
    Add(FileChange{.number = 2,
                   .kind = FileChange::Kind::Copied,
                   .path = R"(H:\jukebox.mdb)",
                   .target = R"(H:\jukebox.mdb_Copy Dated_11212026_71305_AM_)"});
    Add(FileChange{
        .number = 3, .kind = FileChange::Kind::Written, .path = R"(H:\jukebox.mdb.playlists)"});
    End();
    EXPECT_FALSE(Content().HasChanges());
}

TEST_F(Report, SortsFilesByWhatTheyAre) {
    const auto file = [this](FileChange::Kind kind, const std::string& path,
                             const std::string& target = "") {
        FileChange change{.number = records.size(), .kind = kind, .path = path, .target = target};
        if (kind == FileChange::Kind::Deleted) change.before = FileContent{.keptAs = "Removed/a"};
        Add(change);
    };
    file(FileChange::Kind::EndWritten, R"(D:\M\A\B\1.mp3)");
    file(FileChange::Kind::Copied, R"(E:\new\2.mp3)", R"(D:\M\A\B\2.mp3)");
    file(FileChange::Kind::Deleted, R"(D:\M\A\B\3.mp3)");
    file(FileChange::Kind::Deleted, R"(H:\P\a.pla)");
    file(FileChange::Kind::Written, R"(H:\HTML\page1.asp)");
    file(FileChange::Kind::Copied, R"(D:\covers\x.jpg)", R"(H:\HTML\x.jpg)");
    file(FileChange::Kind::Written, R"(H:\Data\Quillon\other.csv)");
    file(FileChange::Kind::Written, R"(H:\M3u\a.M3U8)");
    for (const DeedKind kind :
         {DeedKind::TagWritten, DeedKind::FileCopied, DeedKind::FileRemoved,
          DeedKind::PlaylistDeleted, DeedKind::PageWritten, DeedKind::ImageWritten,
          DeedKind::FileWritten, DeedKind::PlaylistWritten})
        EXPECT_EQ(CountOf(kind), 1U) << static_cast<int>(kind);
    EXPECT_EQ(Content().artists.size(), 1U);
    EXPECT_THAT(Page(), HasSubstr("kept as Removed/a"));
}

TEST_F(Report, KnowsTheArtistOfAFlatFile) {
    facts.flatLayout = true;
    Add(Renamed(1, R"(D:\M\Alder_Dawn.mp3)", R"(D:\M\Alder_Dusk.mp3)"));
    EXPECT_EQ(Content().artists.begin()->first, "Alder");
}

}  // namespace
}  // namespace quillon
