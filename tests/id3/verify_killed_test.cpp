#include <filesystem>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <map>
#include <string>

#include "database/remove_duplicates.h"
#include "id3/verify_tags.h"
#include "reconcile/refresh_database.h"
#include "tests/outside/child_process.h"
#include "tests/outside/density.h"
#include "tests/outside/posix_test.h"
#include "tests/outside/temporary_folder.h"
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
        support::RawTag tag;
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
        library.run.ForgetTables();
    }

    static void Reconcile(support::RealLibrary& library) {
        RemoveDuplicates(library.run);
        VerifyID3Tags(library.run);
        RefreshDatabase(library.run);
    }

    static constexpr const char* Numbers = "SELECT ID, Track, TimesPlayed FROM Tracks ORDER BY ID";
    static constexpr const char* Songs =
        "SELECT ID, SoundFile, Title, TimesPlayed FROM Tracks ORDER BY ID";
};

POSIX_TEST_F(VerifyKilledTest, LosesNoRowAndEndsLikeAnUndisturbedRun) {
    support::RealLibrary undisturbed;
    Prepare(undisturbed);
    const auto numbers = undisturbed.Rows(Numbers);
    undisturbed.Database().ForgetStatements();
    Reconcile(undisturbed);
    const std::size_t statements = undisturbed.Database().Count("");
    const auto songs = undisturbed.Rows(Songs);
    const auto numbersAfter = undisturbed.Rows(Numbers);
    ASSERT_EQ(songs.size(), 5U);
    ASSERT_GT(statements, 15U);

    for (std::size_t n = 1; n <= statements; n += outside::StepUnderSanitizers(3)) {
        support::RealLibrary library;
        Prepare(library);
        library.CloseDatabase();
        EXPECT_TRUE(support::IsKilled([&] {
            library.OpenDatabase();
            library.Database().BeforeStatementNumber(
                n, [](Connection&) { outside::KillThisProcess(); });
            Reconcile(library);
        })) << n;

        library.OpenDatabase();
        const auto numbersNow = library.Rows(Numbers);
        EXPECT_TRUE(numbersNow == numbers || numbersNow == numbersAfter)
            << "killed before statement " << n;
        Reconcile(library);
        EXPECT_EQ(library.Rows(Songs), songs) << "killed before statement " << n;
        if (n % 10 == 1) {
            EXPECT_EQ(library.Faults(), "") << n;
        }
    }
}

/// Names that are passed on and exchanged: at no moment a row may have the path of another song.
class VerifyChainsKilledTest : public ::testing::Test {
  protected:
    static void AddSong(support::RealLibrary& library, const std::string& title,
                        const std::string& tagTitle, std::uint8_t number) {
        support::RawTag tag;
        tag.song = tagTitle;
        tag.track = number;
        library.AddFile("Alder\\One\\Alder - " + title + ".mp3", support::SoundFile(tag), number);
    }

    /// A circle, a chain, a duplicate, and a file that takes the duplicate's name.
    static void Prepare(support::RealLibrary& library) {
        AddSong(library, "A", "B", 1);
        AddSong(library, "B", "C", 2);
        AddSong(library, "C", "A", 3);
        AddSong(library, "K", "L", 4);
        AddSong(library, "L", "M", 5);
        AddSong(library, "R", "S", 6);
        AddSong(library, "S", "T", 7);
        AddSong(library, "T", "T", 8);
        library.Reconcile();
        // Each row has the number of its file's song for its plays.
        library.Database().Execute("UPDATE Tracks SET TimesPlayed = ID");
        library.Database().Flush();
    }

    static void Reconcile(support::RealLibrary& library) {
        RemoveDuplicates(library.run);
        VerifyID3Tags(library.run);
        RefreshDatabase(library.run);
    }

    /// What has the number of each file's song: the path, and the plays of the row of that path.
    static std::map<int, std::string> Songs(support::RealLibrary& library) {
        std::map<std::string, std::string> plays;
        for (const std::string& row : library.Rows("SELECT SoundFile, TimesPlayed FROM Tracks")) {
            const std::size_t bar = row.find('|');
            plays[row.substr(row.rfind('\\') + 1, bar - row.rfind('\\') - 1)] = row.substr(bar + 1);
        }
        std::map<int, std::string> songs;
        for (const auto& entry : std::filesystem::directory_iterator(library.Music("Alder/One"))) {
            const std::string content = outside::ContentOf(entry.path());
            const std::string name = entry.path().filename().string();
            const auto row = plays.find(name);
            songs[content[content.size() - 2]] =
                name + (row == plays.end() ? "" : "|" + row->second);
        }
        return songs;
    }

    /// A row that has the path of a file is that of the file's song.
    static void ExpectNoStrangers(support::RealLibrary& library, const std::string& moment) {
        for (const auto& [number, song] : Songs(library)) {
            const std::size_t bar = song.find('|');
            if (bar != std::string::npos) {
                EXPECT_EQ(song.substr(bar + 1), std::to_string(number)) << moment << ": " << song;
            }
        }
    }
};

POSIX_TEST_F(VerifyChainsKilledTest, GiveNoRowToAnotherSongAndAreFinishedByTheNextRun) {
    std::size_t statements = 0, changes = 0;
    std::map<int, std::string> songs;
    {
        support::RealLibrary undisturbed;
        Prepare(undisturbed);
        undisturbed.Database().ForgetStatements();
        undisturbed.RealFiles().beforeChange = [&] { ++changes; };
        Reconcile(undisturbed);
        statements = undisturbed.Database().Count("");
        songs = Songs(undisturbed);
    }
    ASSERT_EQ(songs, (std::map<int, std::string>{{1, "Alder - B.mp3|1"},
                                                 {2, "Alder - C.mp3|2"},
                                                 {3, "Alder - A.mp3|3"},
                                                 {4, "Alder - L.mp3|4"},
                                                 {5, "Alder - M.mp3|5"},
                                                 {6, "Alder - S.mp3|6"},
                                                 {8, "Alder - T.mp3|8"}}));
    ASSERT_GE(changes, 8U);

    // Moments between the changes of files first, then those between statements.
    for (std::size_t n = 1; n <= changes + statements; n += n <= changes ? 1 : 5) {
        const std::string moment = n <= changes ? "before change " + std::to_string(n)
                                                : "before statement " + std::to_string(n - changes);
        support::RealLibrary library;
        Prepare(library);
        library.CloseDatabase();
        EXPECT_TRUE(support::IsKilled([&] {
            library.OpenDatabase();
            std::size_t count = 0;
            if (n <= changes) {
                library.RealFiles().beforeChange = [&] {
                    if (++count == n) outside::KillThisProcess();
                };
            } else {
                library.Database().BeforeStatementNumber(
                    n - changes, [](Connection&) { outside::KillThisProcess(); });
            }
            Reconcile(library);
        })) << moment;
        library.OpenDatabase();
        ExpectNoStrangers(library, moment);
        Reconcile(library);
        EXPECT_EQ(Songs(library), songs) << moment;
    }
}

}  // namespace
}  // namespace quillon
