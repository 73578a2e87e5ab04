#include <csignal>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>

#include "database/marks.h"
#include "database/remove_duplicates.h"
#include "id3/verify_tags.h"
#include "reconcile/refresh_database.h"
#include "tests/support/real_library.h"
#include "tests/support/sound_file.h"

namespace quillon {
namespace {

/// A library whose files get their tags' titles, killed before each of its database statements in
/// turn. Nothing but what the run itself has made durable is on the disk then.
class VerifyKilledTest : public ::testing::Test {
  protected:
    static void AddFile(support::RealLibrary& library, const std::string& name,
                        const std::string& song, std::uint8_t track) {
        support::Tag tag;
        tag.song = song;
        tag.track = track;
        library.AddFile(name, support::SoundFile(tag), track);
    }

    static void Prepare(support::RealLibrary& library) {
        AddFile(library, R"(Alder\One\01 - Dawn.mp3)", "Dawn", 1);
        AddFile(library, R"(Alder\One\02 - Noon.mp3)", "Noon", 2);
        AddFile(library, R"(Alder\One\Alder - Dusk.mp3)", "Night", 3);
        AddFile(library, R"(Birch\Two\Birch - Bark [x].mp3)", "Bark (x)", 1);
        AddFile(library, R"(Birch\Two\[y].mp3)", "Leaf", 2);
        library.Reconcile();
        library.Database().Execute("UPDATE Tracks SET TimesPlayed = ID * 10, Track = Track + 10");
        library.Database().Flush();
    }

    static void Reconcile(support::RealLibrary& library) {
        if (MarkSnapshotExists(library.run)) RestoreMarks(library.run);
        RemoveDuplicates(library.run);
        VerifyID3Tags(library.run);
        RefreshDatabase(library.run);
    }

    static constexpr const char* Numbers = "SELECT ID, Track, TimesPlayed FROM Tracks ORDER BY ID";
    static constexpr const char* Songs =
        "SELECT ID, SoundFile, Title, TimesPlayed FROM Tracks ORDER BY ID";
};

TEST_F(VerifyKilledTest, LosesNoRowAndEndsLikeAnUndisturbedRun) {
    support::RealLibrary undisturbed;
    Prepare(undisturbed);
    const auto numbers = undisturbed.Rows(Numbers);
    undisturbed.Database().ForgetStatements();
    Reconcile(undisturbed);
    const std::size_t statements = undisturbed.Database().Count("");
    const auto songs = undisturbed.Rows(Songs);
    ASSERT_EQ(songs.size(), 5U);
    ASSERT_GT(statements, 40U);

    for (std::size_t n = 1; n <= statements; n += 2) {
        support::RealLibrary library;
        Prepare(library);
        library.CloseDatabase();
        EXPECT_TRUE(support::IsKilled([&] {
            library.OpenDatabase();
            library.Database().BeforeStatementNumber(n, [](Connection&) { std::raise(SIGKILL); });
            Reconcile(library);
        })) << n;

        library.OpenDatabase();
        if (MarkSnapshotExists(library.run)) {
            RestoreMarks(library.run);
            EXPECT_EQ(library.Rows(Numbers), numbers) << "killed before statement " << n;
        }
        Reconcile(library);
        EXPECT_EQ(library.Rows(Songs), songs) << "killed before statement " << n;
        if (n % 10 == 1) {
            EXPECT_EQ(library.Faults(), "") << n;
        }
    }
}

}  // namespace
}  // namespace quillon
