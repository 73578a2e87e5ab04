#include <chrono>
#include <filesystem>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>
#include <thread>

#include "id3/write_id3.h"
#include "tests/outside/child_process.h"
#include "tests/outside/file_marks.h"
#include "tests/outside/posix_test.h"
#include "tests/outside/temporary_folder.h"
#include "tests/support/real_library.h"
#include "tests/support/sound_file.h"

namespace quillon {
namespace {

namespace fs = std::filesystem;
using support::RawTag;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

/// Real files whose tags differ.
class RealTagsTest : public ::testing::Test {
  protected:
    static std::string Path(int number) {
        return "Alder\\First Light\\Alder - Song " + std::to_string(number) + ".mp3";
    }
    static std::string Title(int number) { return "Song " + std::to_string(number); }

    static std::string Audio(int number) {
        return support::UntaggedSoundFile() + std::string(static_cast<std::size_t>(number), 'a');
    }
    static std::string TagOf(const std::string& song, const std::string& artist,
                             const std::string& album) {
        RawTag tag;
        tag.song = song;
        tag.artist = artist;
        tag.album = album;
        tag.year = "1999";
        return support::TagBytes(tag);
    }
    static std::string OldTag() { return TagOf("old", "old", "old"); }
    static std::string NewTag(int number) { return TagOf(Title(number), "Alder", "First Light"); }

    void AddSong(int number, const std::string& tag = OldTag()) {
        library.AddFile(Path(number), Audio(number) + tag);
        library.run.connection->Execute(
            "INSERT INTO SpinnerID3Differences (Field, Artist, Album, Track) VALUES (\"Album\", "
            "\"Alder\", \"First Light\", \"" +
            Title(number) + "\")");
    }

    std::string Content(int number) { return outside::ContentOf(library.Music(Path(number))); }
    fs::file_time_type Modified(int number) {
        return fs::last_write_time(library.Music(Path(number)));
    }

    /// Every file has its old tag or its new one; how many the new one.
    int WholeFiles(int count) {
        int written = 0;
        for (int number = 0; number < count; ++number) {
            const std::string content = Content(number);
            const bool isNew = content == Audio(number) + NewTag(number);
            EXPECT_TRUE(isNew || content == Audio(number) + OldTag()) << number;
            written += isNew ? 1 : 0;
        }
        return written;
    }

    support::RealLibrary library;
};

TEST_F(RealTagsTest, AreWrittenInPlaceAndTheFilesKeepTheirTimes) {
    AddSong(1);
    AddSong(2, "");
    const auto first = Modified(1), second = Modified(2);
    WriteID3(library.run);
    EXPECT_EQ(Content(1), Audio(1) + NewTag(1));
    EXPECT_EQ(Content(2).size(), Audio(2).size() + 128);
    EXPECT_EQ(Content(2).substr(0, Audio(2).size()), Audio(2));
    EXPECT_EQ(Modified(1), first);
    EXPECT_EQ(Modified(2), second);
    EXPECT_THAT(library.host.log, IsEmpty());
}

POSIX_TEST_F(RealTagsTest, KeepLinksToTheirFiles) {
    AddSong(1);
    AddSong(2);
    const fs::path elsewhere = library.Folder() / "elsewhere.mp3";
    fs::rename(library.Music(Path(1)), elsewhere);
    fs::create_symlink(elsewhere, library.Music(Path(1)));
    fs::create_hard_link(library.Music(Path(2)), library.Folder() / "hard.mp3");
    WriteID3(library.run);
    EXPECT_TRUE(fs::is_symlink(library.Music(Path(1))));
    EXPECT_EQ(Content(1), Audio(1) + NewTag(1));
    EXPECT_EQ(Content(2), Audio(2) + NewTag(2));
    EXPECT_EQ(fs::hard_link_count(library.Music(Path(2))), 2U);
}

POSIX_TEST_F(RealTagsTest, StayOnWriteProtectedFilesWhichAreLogged) {
    AddSong(1);
    AddSong(2);
    outside::SetRights(library.Music(Path(1)), 0444);
    EXPECT_TRUE(support::RunsWellUnprivileged(library.Folder(), [&] {
        WriteID3(library.run);
        EXPECT_THAT(library.host.log,
                    ElementsAre("Quillon: WriteID3 Management Line 6 Permission denied: "
                                "D:\\Music\\" +
                                Path(1)));
        EXPECT_EQ(Content(1), Audio(1) + OldTag());
        EXPECT_EQ(Content(2), Audio(2) + NewTag(2));
    }));
}

POSIX_TEST_F(RealTagsTest, AreOldOrNewAfterAKillBetweenFiles) {
    constexpr int Count = 20;
    for (int number = 0; number < Count; ++number)
        AddSong(number);
    for (int round = 1; round <= 3; ++round) {
        EXPECT_TRUE(support::IsKilled([&] {
            library.window.onEvents = [events = 0](const FormState&) mutable {
                if (++events == 7) outside::KillThisProcess();
            };
            WriteID3(library.run);
        }));
        EXPECT_EQ(WholeFiles(Count), 5);  // the first event is the artist's
    }
    WriteID3(library.run);
    EXPECT_EQ(WholeFiles(Count), Count);
}

POSIX_TEST_F(RealTagsTest, AreOldOrNewAfterAKillAtAnyMoment) {
    constexpr int Count = 120;
    for (int number = 0; number < Count; ++number)
        AddSong(number);
    for (int moment = 0; moment < 25; ++moment) {
        outside::ChildProcess child([&] {
            WriteID3(library.run);
            return 0;
        });
        std::this_thread::sleep_for(std::chrono::microseconds(500 * moment));
        child.Kill();
        child.Wait();
        WholeFiles(Count);
    }
    WriteID3(library.run);
    EXPECT_EQ(WholeFiles(Count), Count);
    EXPECT_THAT(library.host.log, IsEmpty());
}

}  // namespace
}  // namespace quillon
