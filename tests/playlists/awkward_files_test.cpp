// Playlist folders as they are found: real files of any bytes and permissions.

#include <filesystem>
#include <fstream>
#include <gmock/gmock.h>
#include <sstream>

#include "playlists/capture.h"
#include "playlists/convert.h"
#include "playlists/create.h"
#include "playlists/refresh.h"
#include "tests/outside/posix_test.h"
#include "tests/support/real_library.h"

namespace quillon {
namespace {

namespace fs = std::filesystem;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::SizeIs;

class AwkwardFiles : public ::testing::Test {
  protected:
    AwkwardFiles() {
        library.run.settings.PlayListPath = R"(D:\Lists\)";
        library.run.settings.PlayListPath2 = R"(D:\M3u\)";
        fs::create_directory(Lists());
        fs::create_directory(library.Folder() / "M3u");
        library.Database().Execute("INSERT INTO Albums (CDJID) VALUES ('A0')");
        for (const char* number : {"1", "2"})
            library.Database().Execute(
                "INSERT INTO Tracks (CDJID, Track, Artist, Title, SoundFile, Minutes, Seconds) "
                "VALUES ('A0', " +
                std::string(number) + ", 'Ann', 'x', 'D:\\x.mp3', 1, 1)");
        library.Database().Execute(
            "INSERT INTO Spinner (Artist, Song, Genre, Exclude) VALUES ('Ann', 'x', 'Folk', 0)");
        library.Database().Flush();
    }

    fs::path Lists() const { return library.Folder() / "Lists"; }

    void Write(const std::string& name, const std::string& bytes) const {
        std::ofstream(Lists() / name, std::ios::binary) << bytes;
    }

    std::string Bytes(const std::string& name) const {
        std::ostringstream bytes;
        bytes << std::ifstream(Lists() / name, std::ios::binary).rdbuf();
        return bytes.str();
    }

    void Repair() {
        BuildORsRecordset(library.run);
        CapturePlaylists(library.run);
        RefreshPlaylist(library.run);
    }

    support::RealLibrary library;
};

TEST_F(AwkwardFiles, KeepTheirBytesWhereNothingIsWrong) {
    std::string allBytes;
    for (int byte = 0; byte < 256; ++byte) {
        if (byte != '\n') allBytes += static_cast<char>(byte);
    }
    const std::string text = allBytes + "\nA0 0\r\nA0 -1\nA0 1";
    Write("Mine.pla", text);
    Repair();
    EXPECT_EQ(Bytes("Mine.pla"), text);
    EXPECT_THAT(library.host.log, IsEmpty());
}

TEST_F(AwkwardFiles, KeepEveryByteOfTheirHeaderWhenRewritten) {
    std::string header;
    for (int byte = 0; byte < 256; ++byte) {
        if (byte != '\n' && byte != '\r') header += static_cast<char>(byte);
    }
    Write("Mine.pla", header + "\nA0 0\n\n");
    Repair();
    EXPECT_EQ(Bytes("Mine.pla"), header + "\r\nA0 0\r\n");
}

TEST_F(AwkwardFiles, MayBeginWithAUtf8Mark) {
    Write("Mine.pla",
          "\xEF\xBB\xBF"
          "CDJ Playlist V1.1\r\nA0 0\r\n");
    Repair();
    EXPECT_THAT(library.host.log, IsEmpty());
}

/// Nothing in them reads as an entry, so they are no playlists that could have lost theirs.
TEST_F(AwkwardFiles, OfUtf16OrJunkStay) {
    std::string wide = "\xFF\xFE";
    for (const char letter : std::string("CDJ Playlist V1.1\r\nA0 0\r\n")) {
        wide += letter;
        wide += '\0';
    }
    Write("Wide.pla", wide);
    std::string junk = "\x7F\n";
    for (int i = 0; i < 1000; ++i)
        junk += static_cast<char>((i * 7919 + i / 13) % 256);
    Write("Zjunk.pla", junk);
    Write("Zlast.pla", "header\nA0 0\n");
    Repair();
    EXPECT_EQ(Bytes("Wide.pla"), wide);
    EXPECT_EQ(Bytes("Zjunk.pla"), junk);
    EXPECT_EQ(Bytes("Zlast.pla"), "header\nA0 0\n");
    EXPECT_THAT(library.host.log, ElementsAre(HasSubstr("Wide.pla is left as it is"),
                                              HasSubstr("Zjunk.pla is left as it is")));
}

TEST_F(AwkwardFiles, MayHaveLinesOfTenMegabytes) {
    constexpr std::size_t TenMegabytes = 10'000'000;
    std::string blanks, letters;
    blanks.resize(TenMegabytes, ' ');
    letters.resize(TenMegabytes, 'x');
    Write("Mine.pla", "header\nA0 0" + blanks + "\n" + blanks + "\n" + letters + "\nA0 1\n");
    Repair();
    EXPECT_EQ(Bytes("Mine.pla"), "header\r\nA0 0\r\nA0 1\r\n");
    EXPECT_THAT(library.host.log, SizeIs(1));
    aPlaToM3u_Click(library.run);
    EXPECT_TRUE(fs::exists(library.Folder() / "M3u" / "Mine.m3u"));
}

POSIX_TEST_F(AwkwardFiles, LeaveWhatIsNoFileAlone) {
    fs::create_directories(Lists() / "Folder.pla");
    fs::create_symlink("nowhere", Lists() / "Link.pla");
    Write("Mine.pla", "header\nA0 0\n\n");
    Repair();
    EXPECT_EQ(Bytes("Mine.pla"), "header\r\nA0 0\r\n");
    EXPECT_TRUE(fs::is_directory(Lists() / "Folder.pla"));
    EXPECT_TRUE(fs::is_symlink(Lists() / "Link.pla"));
}

POSIX_TEST_F(AwkwardFiles, ThatCannotBeReadCostNothingElse) {
    Write("Bad.pla", "header\nA0 0\n\n");
    Write("Good.pla", "header\nA0 0\n\n");
    fs::permissions(Lists() / "Bad.pla", fs::perms::none);
    library.CloseDatabase();
    EXPECT_TRUE(support::RunsWellUnprivileged(library.Folder(), [this] {
        library.OpenDatabase();
        Repair();
        EXPECT_EQ(Bytes("Good.pla"), "header\r\nA0 0\r\n");
        EXPECT_THAT(library.host.log,
                    ElementsAre(HasSubstr(R"(Permission denied: D:\Lists\Bad.pla)")));
    }));
    fs::permissions(Lists() / "Bad.pla", fs::perms::all);
    EXPECT_EQ(Bytes("Bad.pla"), "header\nA0 0\n\n");
}

/// What the list meant is kept for the next run.
POSIX_TEST_F(AwkwardFiles, ThatAreWriteProtectedStayAndCostNothingElse) {
    Write("Bad.pla", "header\nA0 0\n\n");
    Write("Good.pla", "header\nA0 0\n\n");
    fs::permissions(Lists() / "Bad.pla", fs::perms::owner_read);
    library.CloseDatabase();
    EXPECT_TRUE(support::RunsWellUnprivileged(library.Folder(), [this] {
        library.OpenDatabase();
        Repair();
        EXPECT_EQ(Bytes("Bad.pla"), "header\nA0 0\n\n");
        EXPECT_EQ(Bytes("Good.pla"), "header\r\nA0 0\r\n");
        EXPECT_THAT(library.host.log,
                    ElementsAre("Quillon: Refresh Playlist Error: Line 0 Permission denied: "
                                R"(D:\Lists\Bad.pla)"));
        EXPECT_TRUE(fs::exists(library.DatabaseFile().string() + ".playlists"));
        fs::permissions(Lists() / "Bad.pla", fs::perms::owner_all);
        Repair();
        EXPECT_EQ(Bytes("Bad.pla"), "header\r\nA0 0\r\n");
        EXPECT_FALSE(fs::exists(library.DatabaseFile().string() + ".playlists"));
    }));
}

POSIX_TEST_F(AwkwardFiles, InAFolderThatIsNotWritableAreNotChanged) {
    Write("Mine.pla", "header\nA0 0\n\n");
    library.CloseDatabase();
    EXPECT_TRUE(support::RunsWellUnprivileged(library.Folder(), [this] {
        fs::permissions(Lists(), fs::perms::owner_read | fs::perms::owner_exec);
        library.OpenDatabase();
        Repair();
        BuildORsRecordset(library.run);
        CreateNewPlaylists(library.run);
        EXPECT_THAT(library.host.log,
                    ElementsAre(HasSubstr("Refresh Playlist Error: Line 0 Permission denied"),
                                HasSubstr("Generate New Playlists Error: Line 0 Permission"),
                                HasSubstr("Generate New Playlists Error: Line 0 Permission")));
        fs::permissions(Lists(), fs::perms::owner_all);
        EXPECT_EQ(Bytes("Mine.pla"), "header\nA0 0\n\n");
    }));
}

/// The root of a drive with all that a person keeps there.
TEST_F(AwkwardFiles, AreAllThatIsTouchedInAFolderOfOtherThings) {
    library.run.settings.PlayListPath = R"(D:\)";
    std::ofstream(library.Folder() / "Mine.pla", std::ios::binary) << "header\nA0 0\n\n";
    for (const char* name : {"Quillon.ini", "host.ini", "notes.txt", "song.mp3", "plain"})
        std::ofstream(library.Folder() / name, std::ios::binary) << "[a]\nb=c\n";
    Repair();
    EXPECT_EQ(fs::file_size(library.Folder() / "Mine.pla"), std::string("header__A0 0__").size());
    for (const char* name : {"Quillon.ini", "host.ini", "notes.txt", "song.mp3", "plain"})
        EXPECT_TRUE(fs::exists(library.Folder() / name)) << name;
    EXPECT_THAT(library.host.log,
                ElementsAre(HasSubstr(R"(PlayListPath (D:\) is the root of a drive)")));
}

TEST_F(AwkwardFiles, OfMoreThanAListCanHoldAreNotTakenIntoMemory) {
    Write("Huge.pla", "header\nA0 0\n");
    fs::resize_file(Lists() / "Huge.pla", std::uintmax_t{65} << 20U);
    Write("Good.pla", "header\nA0 0\n\n");
    Repair();
    EXPECT_EQ(Bytes("Good.pla"), "header\r\nA0 0\r\n");
    EXPECT_EQ(fs::file_size(Lists() / "Huge.pla"), std::uintmax_t{65} << 20U);
    EXPECT_THAT(
        library.host.log,
        ElementsAre(HasSubstr(R"(Overflow: D:\Lists\Huge.pla is too large for a playlist)")));
}

/// A link whose disk is away stands for a list.
POSIX_TEST_F(AwkwardFiles, ThatLeadNowhereAtPresentKeepWhatTheyMeant) {
    fs::create_symlink("nowhere", Lists() / "Away.pla");
    Write("Mine.pla", "header\nA0 0\n");
    Repair();
    EXPECT_TRUE(fs::is_symlink(Lists() / "Away.pla"));
    EXPECT_TRUE(library.run.playlistEntries.IsUnread("Away.pla"));
    EXPECT_TRUE(fs::exists(library.DatabaseFile().string() + ".playlists"));
}

TEST_F(AwkwardFiles, AreNotMissedWhereThereIsNoFolder) {
    fs::remove(Lists());
    Repair();
    EXPECT_THAT(library.host.log, IsEmpty());
    CreateNewPlaylists(library.run);
    EXPECT_THAT(library.host.log,
                ElementsAre(HasSubstr("Generate New Playlists Error: Line 0 Path not found")));
}

}  // namespace
}  // namespace quillon
