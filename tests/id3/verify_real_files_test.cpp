#include <algorithm>
#include <filesystem>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <random>
#include <set>
#include <string>
#include <string_view>

#include "database/remove_duplicates.h"
#include "id3/verify_tags.h"
#include "reconcile/refresh_database.h"
#include "tests/outside/posix_test.h"
#include "tests/outside/temporary_folder.h"
#include "tests/support/real_library.h"
#include "tests/support/sound_file.h"

/// What files in memory cannot show: names that a disk refuses, rights, files that change.
namespace quillon {
namespace {

namespace fs = std::filesystem;
using support::RawTag;
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::HasSubstr;

class VerifyRealFilesTest : public ::testing::Test {
  protected:
    static RawTag TagOf(const std::string& song) {
        RawTag tag;
        tag.song = song;
        tag.track = 1;
        return tag;
    }
    void AddFile(const std::string& name, const std::string& song) {
        library.AddFile("Alder/First Light/" + name, support::SoundFile(TagOf(song)));
    }
    void Reconcile() {
        RemoveDuplicates(library.run);
        VerifyID3Tags(library.run);
        RefreshDatabase(library.run);
    }
    std::vector<std::string> Names() {
        std::vector<std::string> names;
        for (const auto& entry : fs::directory_iterator(library.Music("Alder/First Light")))
            names.push_back(entry.path().filename().string());
        std::sort(names.begin(), names.end());
        return names;
    }

    support::RealLibrary library;
};

TEST_F(VerifyRealFilesTest, TakeTheirTagsTitleAndTheirRowsFollow) {
    AddFile("01 - Dawn.mp3", "D\xE4mmerung");
    library.Reconcile();
    library.run.connection->Execute("UPDATE Tracks SET TimesPlayed=7");
    Reconcile();
    EXPECT_THAT(Names(), ElementsAre("Alder - D\xC3\xA4mmerung.mp3"));
    EXPECT_THAT(library.Rows("SELECT ID, Title, Track, TimesPlayed FROM Tracks"),
                ElementsAre("1|D\xC3\xA4mmerung|1|7"));
    EXPECT_EQ(library.run.counts.errors, 0U);
    EXPECT_EQ(library.Faults(), "");
}

TEST_F(VerifyRealFilesTest, KeepANameWhereTheNewOneIsTooLong) {
    const std::string artist(235, 'A');
    library.AddFile(artist + "/B/x.mp3",
                    support::SoundFile(TagOf("A title of thirty characters..")));
    Reconcile();
    EXPECT_TRUE(fs::exists(library.Music(artist + "/B/x.mp3")));
    ASSERT_FALSE(library.host.log.empty());
    EXPECT_THAT(library.host.log[0],
                HasSubstr("VerifyID3TagsFolder Line 7 Bad file name or number"));
    EXPECT_THAT(library.host.log[0], HasSubstr("\\B\\x.mp3)"));
}

// Removing the file would leave a link to nothing.
POSIX_TEST_F(VerifyRealFilesTest, AreNoDuplicatesOfALinkToThem) {
    AddFile("07.mp3", "Dusk");
    fs::create_symlink("07.mp3", library.Music("Alder/First Light/Alder - Dusk.mp3"));
    Reconcile();
    EXPECT_THAT(Names(), ElementsAre("07.mp3", "Alder - Dusk.mp3"));
    EXPECT_THAT(library.host.log,
                ElementsAre("Quillon: D:\\Music\\Alder\\First Light\\07.mp3 stays, since Alder - "
                            "Dusk.mp3 is a link to the same file"));
}

TEST_F(VerifyRealFilesTest, OfAnyLengthAreReadOrPassedOver) {
    const std::string tag = support::TagBytes(TagOf("Other"));
    for (const std::size_t cut : {0U, 1U, 127U, 128U})
        library.AddFile("Alder/First Light/" + std::to_string(cut) + ".mp3", tag.substr(cut));
    library.AddFile("Alder/First Light/129.mp3", "x" + tag);
    Reconcile();
    EXPECT_THAT(Names(), ElementsAre("0.mp3", "1.mp3", "127.mp3", "128.mp3", "Alder - Other.mp3"));
    EXPECT_EQ(library.run.counts.errors, 0U);
}

POSIX_TEST_F(VerifyRealFilesTest, ThatAreWriteProtectedAreRenamedButNotDeleted) {
    AddFile("1.mp3", "Dusk");
    AddFile("2.mp3", "Dusk");
    fs::permissions(library.Music("Alder/First Light/1.mp3"), fs::perms(0444));
    fs::permissions(library.Music("Alder/First Light/2.mp3"), fs::perms(0444));
    library.CloseDatabase();
    EXPECT_TRUE(support::RunsWellUnprivileged(library.Folder(), [this] {
        library.OpenDatabase();
        VerifyID3Tags(library.run);
        EXPECT_THAT(library.host.log,
                    Contains("Quillon: VerifyID3TagsFolder Line 7 Permission denied: "
                             "D:\\Music\\Alder\\First Light\\2.mp3"));
        EXPECT_EQ(library.run.counts.errors, 1U);
        library.CloseDatabase();
    }));
    EXPECT_THAT(Names(), ElementsAre("2.mp3", "Alder - Dusk.mp3"));
}

POSIX_TEST_F(VerifyRealFilesTest, InAFolderThatMayNotBeWrittenKeepTheirNamesAndRows) {
    AddFile("Dawn.mp3", "Dusk");
    AddFile("[x].mp3", "(x)");
    library.Reconcile();
    const auto state = library.State();
    library.CloseDatabase();
    const fs::path folder = library.Music("Alder/First Light");
    fs::permissions(folder, fs::perms(0555));
    EXPECT_TRUE(support::RunsWellUnprivileged(library.Folder(), [&] {
        library.OpenDatabase();
        Reconcile();
        EXPECT_EQ(library.State(), state);
        EXPECT_EQ(library.host.log.size(), 2U);
        library.CloseDatabase();
    }));
    fs::permissions(folder, fs::perms(0755));
    EXPECT_THAT(Names(), ElementsAre("Dawn.mp3", "[x].mp3"));
}

TEST_F(VerifyRealFilesTest, OfWhichOneShrinksAfterItWasReadGoOn) {
    AddFile("1.mp3", "Dusk");
    AddFile("2.mp3", "Noon");
    library.Database().BeforeStatement(
        "Flush", [this] { fs::resize_file(library.Music("Alder/First Light/2.mp3"), 5); });
    Reconcile();
    EXPECT_THAT(Names(), ElementsAre("Alder - Dusk.mp3", "Alder - Noon.mp3"));
    EXPECT_EQ(fs::file_size(library.Music("Alder/First Light/Alder - Noon.mp3")), 5U);
}

/// Of index keys with one of these before a hyphen the structural check expects something else than
/// Access stores.
constexpr std::string_view TwoLettersInOne = "\x8C\x9C\xC6\xDE\xDF\xE6\xFE";

TEST_F(VerifyRealFilesTest, WithRandomTagsAreAllStillThereByContent) {
    std::minstd_rand random(4);
    std::uniform_int_distribution<int> byte(0, 255);
    std::multiset<std::string> contents;
    for (int i = 0; i < 300; ++i) {
        std::string tag = "TAG";
        while (tag.size() < 128) {
            const auto letter = static_cast<char>(byte(random));
            if (TwoLettersInOne.find(letter) == std::string_view::npos) tag += letter;
        }
        const std::string content = support::UntaggedSoundFile() + tag;
        library.AddFile("A/B/" + std::to_string(i) + ".mp3", content);
        contents.insert(content);
    }
    Reconcile();
    std::multiset<std::string> after;
    for (const auto& entry : fs::recursive_directory_iterator(library.Music())) {
        if (!entry.is_regular_file()) continue;
        EXPECT_EQ(entry.path().parent_path(), library.Music("A/B"));
        after.insert(outside::ContentOf(entry.path()));
    }
    EXPECT_EQ(after, contents);
    EXPECT_THAT(library.Rows("SELECT Count(*) FROM Tracks"), ElementsAre("300"));
    EXPECT_EQ(library.Faults(), "");
}

}  // namespace
}  // namespace quillon
