#include "tags/known_tags.h"

#include <gmock/gmock.h>

#include "tests/support/test_library.h"

namespace quillon {
namespace {

/// What is known of tags, in a run and in the next one.
class KnownTagsTest : public ::testing::Test {
  protected:
    static constexpr int Many = 500;

    KnownTagsTest() {
        library.run.settings.Nirvis_CDJ_DB = R"(D:\jukebox.mdb)";
        library.files.AddFolder("D:\\");
    }

    static FileEntry File(int number, std::int64_t changed = 1) {
        FileEntry file;
        file.name = std::to_string(number) + ".mp3";
        file.path = R"(D:\Music\)" + file.name;
        file.size = 1000 + static_cast<std::uint64_t>(number);
        file.changed = changed;
        return file;
    }
    static FoundTag Said(const std::string& song) {
        FoundTag found;
        found.tag.marker = "TAG";
        found.tag.song = song;
        found.tag.comment = "a b%c";
        found.tag.isRecorded = false;
        found.genreNumber = 17;
        found.art = EmbeddedArt::None;
        return found;
    }
    static std::string SongOf(int number) {
        return "Song " + std::string(static_cast<std::size_t>(number % 40), 'x') +
               std::to_string(number);
    }
    static void SetMany(KnownTags& known) {
        for (int i = 0; i < Many; ++i)
            known.Set(File(i), Said(SongOf(i)));
    }
    std::string Content() { return library.files.Content(KnownTagsPath(R"(D:\jukebox.mdb)")); }

    support::TestLibrary library;
};

TEST_F(KnownTagsTest, AreFoundInTheSameRunAndInTheNext) {
    KnownTags known(library.run);
    EXPECT_EQ(known.Find(File(1)), std::nullopt);
    SetMany(known);
    known.Save();
    KnownTags next(library.run);
    for (int i = 0; i < Many; ++i) {
        ASSERT_EQ(known.Find(File(i)), Said(SongOf(i)));
        ASSERT_EQ(next.Find(File(i)), Said(SongOf(i)));
    }
    EXPECT_EQ(next.Find(File(Many)), std::nullopt);
}

TEST_F(KnownTagsTest, CountOnlyWhileTheFileIsTheSame) {
    KnownTags known(library.run);
    known.Set(File(1), Said("One"));
    EXPECT_EQ(known.Find(File(1, 2)), std::nullopt);
    FileEntry larger = File(1);
    ++larger.size;
    EXPECT_EQ(known.Find(larger), std::nullopt);
    FileEntry younger = File(1);
    younger.modified.days += 1;
    EXPECT_EQ(known.Find(younger), std::nullopt);
    EXPECT_EQ(known.Find(File(1)), Said("One"));
}

TEST_F(KnownTagsTest, GiveWayToLongerAndShorterOnes) {
    KnownTags known(library.run);
    SetMany(known);
    // By little, too: what is left of a longer one stands right behind the last word.
    for (const int further : {9, 7})
        for (int i = 0; i < Many; ++i)
            known.Set(File(i, 2), Said(SongOf(i + further)));
    known.Save();
    KnownTags next(library.run);
    for (int i = 0; i < Many; ++i) {
        ASSERT_EQ(known.Find(File(i, 2)), Said(SongOf(i + 7)));
        ASSERT_EQ(next.Find(File(i, 2)), Said(SongOf(i + 7)));
        ASSERT_EQ(next.Find(File(i)), std::nullopt);
    }
}

TEST_F(KnownTagsTest, StandInTheFileInTheOrderInWhichTheyCame) {
    KnownTags known(library.run);
    SetMany(known);
    known.Save();
    const std::string content = Content();
    std::size_t last = 0;
    for (int i = 0; i < Many; ++i) {
        const std::size_t at = content.find("Song%20" + SongOf(i).substr(5) + "%00");
        ASSERT_NE(at, std::string::npos);
        ASSERT_GT(at, last);
        last = at;
    }
    KnownTags next(library.run);
    next.Set(File(3), Said(SongOf(3)));
    next.Save();
    EXPECT_EQ(Content(), content);
}

TEST_F(KnownTagsTest, OfFilesThatNobodyAskedForGo) {
    {
        KnownTags known(library.run);
        SetMany(known);
        known.Save();
    }
    KnownTags known(library.run);
    for (int i = 0; i < Many; i += 3)
        known.Find(File(i));
    known.Keep(File(1).path);
    known.SaveKept();
    KnownTags next(library.run);
    for (int i = 0; i < Many; ++i) {
        const std::optional<FoundTag> expected =
            i % 3 == 0 || i == 1 ? std::optional(Said(SongOf(i))) : std::nullopt;
        ASSERT_EQ(known.Find(File(i)), expected) << i;
        ASSERT_EQ(next.Find(File(i)), expected) << i;
    }
}

}  // namespace
}  // namespace quillon
