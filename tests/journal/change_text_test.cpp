#include "app/journal/change_text.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace quillon {
namespace {

using RowKind = RowChange::Kind;
using FileKind = FileChange::Kind;
using ::testing::HasSubstr;
using ::testing::Not;

RowChange Row(RowKind kind, const std::string& table, std::int64_t number,
              std::vector<FieldChange> fields) {
    return {.kind = kind, .table = table, .key = {{"ID", number}}, .fields = std::move(fields)};
}

RowChange NewTrack(std::int64_t number, const std::string& file) {
    return Row(RowKind::Added, "Tracks", number, {{"SoundFile", Null{}, file}});
}

Value Number(std::int64_t number) {
    return number;
}

FileChange File(FileKind kind, const std::string& path, const std::string& target = "") {
    return {.kind = kind, .path = path, .target = target};
}

FileContent Content(const std::string& bytes) {
    return {.size = bytes.size(), .hash = ContentHash(bytes), .bytes = bytes};
}

std::string TextOf(std::vector<ChangeRecord> records, const ChangeTextOptions& options = {}) {
    return ChangeText(NetChangesOf(records), options);
}

TEST(ChangeText, GroupsRowsByWhatBecomesOfThem) {
    EXPECT_EQ(TextOf({Row(RowKind::Added, "Albums", 1,
                          {{"Artist", Null{}, "Ann"}, {"Title", Null{}, "First"}}),
                      NewTrack(1, R"(D:\a.mp3)"),
                      Row(RowKind::Removed, "Tracks", 7, {{"SoundFile", R"(D:\b.mp3)", Null{}}}),
                      NewTrack(2, R"(D:\c.mp3)"),
                      Row(RowKind::Changed, "Tracks", 8, {{"Track", Number(3), Number(4)}}),
                      Row(RowKind::Changed, "Tracks", 9, {{"Title", "old", "new"}}),
                      Row(RowKind::Added, "SpinnerArtist", 5, {{"Artist", Null{}, "Ann"}})},
                     {.nameOf =
                          [](const RowChange& row) {
                              return row.key.front().second == Number(8) ? "song 8" : "";
                          }}),
              "Albums added: 1\n"
              "  Ann - First\n"
              "\nTracks added: 2\n"
              "  D:\\a.mp3\n"
              "  D:\\c.mp3\n"
              "\nTracks removed: 1\n"
              "  D:\\b.mp3\n"
              "\nTracks whose numbers change: 1\n"
              "  song 8: Track 3 -> 4\n"
              "\nTracks changed: 1\n"
              "  ID 9: Title \"old\" -> \"new\"\n"
              "\nArtists of the download table added: 1\n"
              "  Ann\n");
}

TEST(ChangeText, TellsFilesByWhatIsDoneToThem) {
    FileChange removed = File(FileKind::Deleted, R"(D:\Music\x.mp3)");
    removed.before = FileContent{.keptAs = "Removed/STAMP/D/Music/x.mp3"};
    EXPECT_EQ(TextOf({File(FileKind::Moved, R"(D:\Music\a.mp3)", R"(D:\Music\b.mp3)"),
                      File(FileKind::Moved, R"(D:\Music\c.mp3)", R"(D:\Other\c.mp3)"), removed,
                      File(FileKind::Copied, R"(E:\n.mp3)", R"(D:\Music\n.mp3)"),
                      File(FileKind::Written, R"(H:\HTML\1.asp)"),
                      File(FileKind::Copied, R"(D:\x.mdb)", R"(D:\x.mdb_Copy Dated_1_)")}),
              "Music files renamed: 2\n"
              "  D:\\Music\\a.mp3 -> b.mp3\n"
              "  D:\\Music\\c.mp3 -> D:\\Other\\c.mp3\n"
              "\nMusic files moved to Removed: 1\n"
              "  D:\\Music\\x.mp3 -> Removed/STAMP/D/Music/x.mp3\n"
              "\nMusic files copied: 1\n"
              "  E:\\n.mp3 -> D:\\Music\\n.mp3\n"
              "\nPages of the album picker written: 1\n"
              "  H:\\HTML\\1.asp\n"
              "\nBackups made first: 1\n"
              "  D:\\x.mdb -> x.mdb_Copy Dated_1_\n");
}

TEST(ChangeText, TellsARepairedPlaylistLineByLine) {
    FileChange list = File(FileKind::Written, R"(D:\Lists\a.pla)");
    list.before = Content("one\r\ntwo\r\nthree\r\nfour\r\n");
    list.after = Content("one\r\n2\r\nthree\r\nfive\r\nfour\r\n");
    EXPECT_EQ(TextOf({list}),
              "Playlists rewritten: 1\n"
              "  D:\\Lists\\a.pla\n"
              "    - two\n"
              "    + 2\n"
              "    + five\n");
}

TEST(ChangeText, TellsWhatBecomesOfATagsValues) {
    const auto tag = [](const std::string& song, char genre) {
        std::string bytes = "TAG" + song;
        bytes.resize(127, '\0');
        return bytes + genre;
    };
    FileChange changed = File(FileKind::EndWritten, R"(D:\a.mp3)");
    changed.before = Content(tag("Old", 5));
    changed.after = Content(tag("New \x1B[2J", 17));
    FileChange added = File(FileKind::EndWritten, R"(D:\b.mp3)");
    added.before = Content("");
    added.after = Content(tag("Song", '\xFF'));
    EXPECT_EQ(TextOf({changed, added}),
              "Tags written: 2\n"
              "  D:\\a.mp3: Song \"Old\" -> \"New  [2J\", Genre number 5 -> 17\n"
              "  D:\\b.mp3 (it had no tag), Song \"\" -> \"Song\"\n");
}

TEST(ChangeText, NamesRowsOfTheDownloadTableByTheirSongsAndNotByAddresses) {
    const char* const address = "rtsp://localhost/spinlinks/000-Rock-000.rm";
    EXPECT_EQ(TextOf({Row(RowKind::Added, "Spinner", 1,
                          {{"Artist", Null{}, "Ann"},
                           {"Song", Null{}, "Dawn"},
                           {"FileName", Null{}, address}}),
                      Row(RowKind::Changed, "Spinner", 2, {{"FileName", "", address}})}),
              "Songs of the download table added: 1\n"
              "  Ann - Dawn\n"
              "\nSongs of the download table changed: 1\n"
              "  ID 2: FileName \"\" -> \"rtsp://.../000-Rock-000.rm\"\n");
}

TEST(ChangeText, TellsWhatMattersMostFirstAndCopiesLast) {
    const std::string text =
        TextOf({File(FileKind::Copied, R"(D:\x.mdb)", R"(D:\x.mdb_Copy Dated_1_)"),
                File(FileKind::FolderMade, R"(D:\New)"),
                File(FileKind::Moved, R"(D:\a.mp3)", R"(D:\b.mp3)"), NewTrack(1, R"(D:\b.mp3)")});
    EXPECT_LT(text.find("Tracks added"), text.find("Music files renamed"));
    EXPECT_LT(text.find("Music files renamed"), text.find("Folders made"));
    EXPECT_LT(text.find("Folders made"), text.find("Backups"));
}

TEST(ChangeText, NamesAFileThatStaysInItsFolderByItsName) {
    EXPECT_EQ(TextOf({Row(RowKind::Changed, "Tracks", 1,
                          {{"SoundFile", R"(D:\Music\a.mp3)", R"(D:\Music\b.mp3)"}}),
                      Row(RowKind::Changed, "Tracks", 2,
                          {{"SoundFile", R"(D:\Music\c.mp3)", R"(D:\Other\c.mp3)"}})}),
              "Tracks changed: 2\n"
              "  D:\\Music\\a.mp3 -> b.mp3\n"
              "  D:\\Music\\c.mp3 -> D:\\Other\\c.mp3\n");
}

TEST(ChangeText, NoNameAddsALineOrSpeaksToTheTerminal) {
    const std::string text =
        TextOf({NewTrack(1, "D:\\a\nAlbums removed: 9\r\x1B[31m<b>\"x\".mp3"),
                Row(RowKind::Changed, "Tra\ncks", 2, {{"Tit\nle", "a\nb", "\xFF\x1B"}}),
                File(FileKind::Moved, "D:\\\n.mp3", "D:\\\x07.mp3"), LogLine{true, "a\nb"}});
    EXPECT_EQ(std::count(text.begin(), text.end(), '\n'), 8) << text;
    EXPECT_THAT(text, Not(HasSubstr("\x1B")));
    EXPECT_THAT(text, Not(HasSubstr("\x07")));
    EXPECT_THAT(text, HasSubstr("<b>\"x\".mp3"));
}

TEST(ChangeText, TellsTheFirstHundredAndCountsTheRest) {
    std::vector<ChangeRecord> records;
    for (int i = 0; i < 100'000; ++i)
        records.emplace_back(NewTrack(i, "D:\\" + std::to_string(i) + ".mp3"));
    const std::string text = TextOf(records);
    EXPECT_TRUE(text.starts_with("Tracks added: 100000\n"));
    EXPECT_THAT(text, HasSubstr("  D:\\99.mp3\n  ... and 99900 more\n"));
    EXPECT_EQ(std::count(text.begin(), text.end(), '\n'), 102);
}

TEST(ChangeText, CountsDifferencesThatAreAsBefore) {
    EXPECT_EQ(TextOf({Row(RowKind::Added, "SpinnerID3Differences", 1,
                          {{"Artist", Null{}, "Alder"}, {"Field", Null{}, "Genre"}}),
                      DateReplaced{"SpinnerID3Differences", "UpdateTime", {1}, {2}, 12}}),
              "Differences between tags and database added: 1\n  Alder - Genre\n\n"
              "Differences between tags and database as before: 12\n");
}

TEST(NetChanges, LeavesOutWhatTheRunItselfTakesBack) {
    const std::vector<ChangeRecord> records{
        NewTrack(1, "a"),
        Row(RowKind::Removed, "Tracks", 1, {{"SoundFile", "a", Null{}}}),
        Row(RowKind::Changed, "Tracks", 2, {{"Track", Number(1), Number(2)}}),
        Row(RowKind::Changed, "Tracks", 2, {{"Track", Number(2), Number(1)}}),
        File(FileKind::FolderMade, R"(D:\New)"),
        File(FileKind::Discarded, R"(D:\new)"),
        FileChange{.number = 9, .kind = FileKind::Moved, .path = "a", .target = "b"},
        FileChangeFailed{9, "no"}};
    const NetChanges changes = NetChangesOf(records);
    EXPECT_TRUE(changes.rows.empty());
    EXPECT_TRUE(changes.files.empty());
    EXPECT_FALSE(ChangesLibrary(changes));
}

TEST(NetChanges, LeavesOutNamesOnTheWayToAnotherOne) {
    const std::vector<ChangeRecord> records{
        File(FileKind::Moved, "D:\\a", "D:\\t"), File(FileKind::Moved, "D:\\b", "D:\\a"),
        File(FileKind::Moved, "D:\\T", "D:\\b"), File(FileKind::Moved, "D:\\c", "D:\\d"),
        File(FileKind::Moved, "D:\\d", "D:\\c")};
    const std::vector<FileChange> files = NetChangesOf(records).files;
    EXPECT_THAT(files, testing::ElementsAre(File(FileKind::Moved, "D:\\a", "D:\\b"),
                                            File(FileKind::Moved, "D:\\b", "D:\\a")));
}

TEST(NetChanges, PutsTheChangesOfARowTogether) {
    const std::vector<ChangeRecord> records{
        NewTrack(1, "a"),
        Row(RowKind::Changed, "Tracks", 1, {{"SoundFile", "a", "b"}}),
        Row(RowKind::Changed, "Tracks", 2, {{"Title", "x", "y"}}),
        Row(RowKind::Changed, "Tracks", 2, {{"ID", Number(2), Number(3)}}),
        Row(RowKind::Changed, "Tracks", 3, {{"Title", "y", "z"}}),
        Row(RowKind::Removed, "Tracks", 4, {{"Title", "gone", Null{}}}),
        Row(RowKind::Added, "Tracks", 4, {{"Title", Null{}, "back"}})};
    const std::vector<RowChange> rows = NetChangesOf(records).rows;
    ASSERT_EQ(rows.size(), 3U);
    EXPECT_EQ(rows[0], NewTrack(1, "b"));
    EXPECT_EQ(rows[1], Row(RowKind::Changed, "Tracks", 2,
                           {{"Title", "x", "z"}, {"ID", Number(2), Number(3)}}));
    EXPECT_EQ(rows[2], Row(RowKind::Changed, "Tracks", 4, {{"Title", "gone", "back"}}));
}

std::uint64_t CountOf(const std::vector<ChangeRecord>& records) {
    ChangeCount count;
    for (const ChangeRecord& record : records)
        count.Add(record);
    return count.Value();
}

TEST(NetChanges, BackupsAndDatesOfDifferencesAreNoChangeOfTheLibrary) {
    FileChange same = File(FileKind::Written, R"(D:\Lists\a.pla)");
    same.before = same.after = Content("the same");
    const std::vector<ChangeRecord> records{
        File(FileKind::Copied, R"(D:\x.mdb)", R"(D:\x.mdb_Copy Dated_11222026_52233_PM_)"),
        File(FileKind::FolderCopied, R"(D:\Lists)", R"(D:\Lists_Copy Dated_1_)"),
        DateReplaced{"SpinnerID3Differences", "UpdateTime", {1}, {2}, 12},
        File(FileKind::Written, R"(H:\data\Quillon\QuillonReconcile.csv)"), same};
    EXPECT_FALSE(ChangesLibrary(NetChangesOf(records)));
    EXPECT_EQ(CountOf(records), 0U);
    EXPECT_TRUE(
        ChangesLibrary(NetChangesOf(std::vector<ChangeRecord>{File(FileKind::Copied, "a", "b")})));
}

/// All its rows may be written anew for one that is new.
TEST(ChangeCount, CountsTheListOfDifferencesOnce) {
    const auto difference = [](RowKind kind, std::int64_t row) {
        return Row(kind, "SpinnerID3Differences", row, {{"Field", "Song", "Genre"}});
    };
    const std::vector<ChangeRecord> records{
        difference(RowKind::Removed, 1), difference(RowKind::Added, 2),
        difference(RowKind::Added, 3),
        Row(RowKind::Changed, "Tracks", 2, {{"Track", Number(1), Number(2)}}),
        DateReplaced{"Other", "Time", {1}, {2}, 12}};
    EXPECT_EQ(CountOf(records), 14U);
    EXPECT_TRUE(ChangesLibrary(NetChangesOf(std::span(records).first(1))));
}

TEST(LogText, MarksErrors) {
    const std::vector<ChangeRecord> records{LogLine{false, "all is well"}, LogLine{true, "not"}};
    EXPECT_EQ(LogText(records), "Lines of the log: 2\n    all is well\n  ! not\n");
}

TEST(LineDifferences, OfLongListsStayReadable) {
    std::string before, after;
    for (int i = 0; i < 3000; ++i) {
        before += std::to_string(i) + "\n";
        after += 'x' + std::to_string(i) + "\n";
    }
    const std::string text = LineDifferences(before, after, 10);
    EXPECT_EQ(std::count(text.begin(), text.end(), '\n'), 11);
    EXPECT_THAT(text, HasSubstr("... and 5990 lines more"));
}

}  // namespace
}  // namespace quillon
