#include <filesystem>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <set>
#include <string>

#include "tests/outside/posix_test.h"
#include "tests/support/database_rows.h"
#include "tests/support/real_library.h"
#include "tests/support/sound_file.h"

namespace quillon {
namespace {

namespace fs = std::filesystem;
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;
using ::testing::SizeIs;
using ::testing::StartsWith;

class RealFilesTest : public ::testing::Test {
  protected:
    std::vector<std::string>& Log() { return library.host.log; }

    support::RealLibrary library;
};

POSIX_TEST_F(RealFilesTest, BecomeAlbumsAndTracksThatOtherReadersFind) {
    support::RawTag tag;
    tag.track = 1;
    tag.comment = "Length='61'";
    library.AddFile(R"(Björk's\100% #1 [live]\01 - Jóga.mp3)", support::SoundFile(tag));
    library.AddFile(R"(Björk's\100% #1 [live]\02 - b.mp3)", 5);
    library.Reconcile();
    EXPECT_THAT(library.State(),
                ElementsAre("Björk's|100% #1 [live]|2",
                            R"(D:\Music\Björk's\100% #1 [live]\01 - Jóga.mp3|Jóga|1)",
                            R"(D:\Music\Björk's\100% #1 [live]\02 - b.mp3|b|2)"));
    EXPECT_THAT(Log(), IsEmpty());
    EXPECT_EQ(library.Faults(), "");
    EXPECT_THAT(support::ExportedTable(library.DatabaseFile(), "Tracks"), HasSubstr("Jóga"));
    EXPECT_THAT(support::ExportedTable(library.DatabaseFile(), "Albums"),
                HasSubstr("100% #1 [live]"));
}

TEST_F(RealFilesTest, OfAnyLengthAreTracks) {
    const std::string tag = support::TagBytes({});
    library.AddFile(R"(A\B\0.mp3)", "", 0);
    library.AddFile(R"(A\B\127.mp3)", tag.substr(1), 1);
    library.AddFile(R"(A\B\128.mp3)", tag, 2);
    library.AddFile(R"(A\B\129.mp3)", "x" + tag, 3);
    library.Reconcile();
    EXPECT_THAT(library.State(),
                ElementsAre("A|B|4", R"(D:\Music\A\B\0.mp3|0|1)", R"(D:\Music\A\B\127.mp3|127|2)",
                            R"(D:\Music\A\B\128.mp3|128|3)", R"(D:\Music\A\B\129.mp3|129|4)"));
    EXPECT_THAT(Log(), IsEmpty());
}

TEST_F(RealFilesTest, KeepTheirNumbersByAgeFromTheSecondRunOn) {
    support::RawTag tag;
    for (int i = 0; i < 6; ++i) {
        tag.track = static_cast<std::uint8_t>(i + 1);
        library.AddFile("A\\B\\" + std::to_string(i) + ".mp3", support::SoundFile(tag), 60 - i);
    }
    library.Reconcile();
    const auto first = library.State();
    library.Reconcile();
    const auto second = library.State();
    EXPECT_NE(second, first);
    EXPECT_EQ(second[1], R"(D:\Music\A\B\0.mp3|0|6)");
    const auto everything = library.Rows("SELECT * FROM Tracks ORDER BY ID");
    library.CloseDatabase();
    library.OpenDatabase();
    library.Reconcile();
    EXPECT_EQ(library.Rows("SELECT * FROM Tracks ORDER BY ID"), everything);
}

POSIX_TEST_F(RealFilesTest, WithNamesThatAreNotShownCostTheOthersNothing) {
    library.AddFile(R"(A\B\a.mp3)");
    library.AddFile("A\\B\\bad\xFF.mp3");
    library.AddFile("A\\B\\12\" mix.mp3");
    library.AddFile("A\\bad\xFF\\a.mp3");
    library.AddFile(R"(A\B\)" + std::string(251, 'x') + ".mp3");
    library.Reconcile();
    EXPECT_THAT(library.Rows("SELECT Title FROM Tracks"), Contains("a"));
    EXPECT_THAT(library.Rows("SELECT Title FROM Albums"), ElementsAre("B"));
    const std::size_t lines = Log().size();
    EXPECT_EQ(std::set<std::string>(Log().begin(), Log().end()).size(), lines);
    EXPECT_EQ(library.Faults(), "");
}

POSIX_TEST_F(RealFilesTest, ReachedThroughLoopsAreVisitedOnceAtMost) {
    library.AddFile(R"(A\B\a.mp3)");
    fs::create_directory_symlink("..", library.Music("A") / "loop");
    fs::create_directory_symlink(library.Music(), library.Music("A\\B") / "loop");
    fs::create_symlink("nowhere.mp3", library.Music("A\\B") / "broken.mp3");
    library.Reconcile();
    EXPECT_THAT(library.State(), ElementsAre("A|B|1", R"(D:\Music\A\B\a.mp3|a|1)"));
}

TEST_F(RealFilesTest, ByTheThousandInOneFolderAreAllNumbered) {
    constexpr int Count = 3000;
    for (int i = 0; i < Count; ++i)
        library.AddFile("A\\B\\" + std::to_string(i) + ".mp3", "", i);
    library.Reconcile();
    EXPECT_THAT(library.Rows("SELECT Count(*) FROM Tracks"), ElementsAre("3000"));
    library.Reconcile();
    for (const int i : {0, 1, 1499, 2999}) {
        EXPECT_THAT(library.Rows(R"(SELECT Track FROM Tracks WHERE SoundFile='D:\Music\A\B\)" +
                                 std::to_string(i) + ".mp3'"),
                    ElementsAre(std::to_string(i + 1)));
    }
    EXPECT_THAT(Log(), IsEmpty());
    EXPECT_EQ(library.Faults(), "");
}

class UnreadableFoldersTest : public RealFilesTest {
  protected:
    UnreadableFoldersTest() {
        for (const char* file :
             {R"(Blue\One\a.mp3)", R"(Green\One\a.mp3)", R"(Green\Two\a.mp3)", R"(Red\One\a.mp3)"})
            library.AddFile(file);
        library.Reconcile();
        before = library.State();
        library.CloseDatabase();
    }

    /// Reconciles as somebody who may not look into this folder; nothing may be lost, and one line
    /// tells of it.
    void ExpectNothingLostWithout(const std::string& folder) {
        EXPECT_TRUE(support::RunsWellUnprivileged(library.Folder(), [&] {
            fs::permissions(library.Music(folder), fs::perms::none);
            library.OpenDatabase();
            library.Reconcile();
            EXPECT_EQ(library.State(), before);
            EXPECT_THAT(
                Log(),
                ElementsAre(StartsWith("Quillon: RefreshDatabaseFolder Line 2 Permission denied")));
            library.CloseDatabase();
        }));
        fs::permissions(library.Music(folder), fs::perms::owner_all);
        EXPECT_EQ(library.Faults(), "");
    }

    std::vector<std::string> before;
};

POSIX_TEST_F(UnreadableFoldersTest, CostNothingWhenOneIsTheRoot) {
    ExpectNothingLostWithout("");
}

POSIX_TEST_F(UnreadableFoldersTest, CostNothingWhenOneIsAnArtist) {
    ExpectNothingLostWithout("Green");
}

POSIX_TEST_F(UnreadableFoldersTest, CostNothingWhenOneIsAnAlbum) {
    ExpectNothingLostWithout(R"(Green\Two)");
}

POSIX_TEST_F(UnreadableFoldersTest, LeaveAnUnreadableFileToTheNextRun) {
    EXPECT_TRUE(support::RunsWellUnprivileged(library.Folder(), [&] {
        library.AddFile(R"(Green\One\b.mp3)");
        fs::permissions(library.Music(R"(Green\One\b.mp3)"), fs::perms::none);
        library.OpenDatabase();
        library.Reconcile();
        EXPECT_THAT(library.State(), Not(Contains(HasSubstr("b.mp3"))));
        EXPECT_THAT(Log(),
                    ElementsAre(StartsWith("Quillon: Read ID3 File Error: Line 3 "),
                                R"(Quillon: Reconcile Track Number 2 Missing from Green\One)"));
        fs::permissions(library.Music(R"(Green\One\b.mp3)"), fs::perms::owner_all);
        library.Reconcile();
        EXPECT_THAT(library.State(), Contains(R"(D:\Music\Green\One\b.mp3|b|2)"));
        library.CloseDatabase();
    }));
}

}  // namespace
}  // namespace quillon
