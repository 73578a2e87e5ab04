#include "reconcile/file_list.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/failure.h"
#include "tests/support/tag_records.h"

namespace quillon {
namespace {

using ::testing::ElementsAre;

FileEntry File(const std::string& name, double days) {
    return {.path = R"(D:\)" + name, .name = name, .size = 1, .modified = {days}};
}

std::vector<std::string> Names(const FileList& files) {
    std::vector<std::string> names;
    for (const ListedFile& file : files)
        names.push_back(file.Name);
    return names;
}

TEST(ProcessAlbumTracks, ListsSoundFilesOldestFirst) {
    std::vector<FileEntry> folder{File("a.mp3", 3), File("b.MP3", 1), File("c.jpg", 0),
                                  File("d.mp3", 2)};
    const FileList files = ProcessAlbumTracks(folder);
    EXPECT_THAT(Names(files), ElementsAre(R"(D:\b.MP3)", R"(D:\d.mp3)", R"(D:\a.mp3)"));
    EXPECT_EQ(files[0].ID, 0);
    EXPECT_EQ(files[0].FileDate.days, 1);
}

TEST(ProcessAlbumTracks, KeepsTheFoldersOrderAmongFilesOfOneAge) {
    std::vector<FileEntry> folder{File("a.mp3", 1), File("b.mp3", 1), File("c.mp3", 0),
                                  File("d.mp3", 1)};
    EXPECT_THAT(Names(ProcessAlbumTracks(folder)),
                ElementsAre(R"(D:\c.mp3)", R"(D:\a.mp3)", R"(D:\b.mp3)", R"(D:\d.mp3)"));
}

TEST(ProcessFlatTracks, ListsAllFilesOfTheGroupOldestFirst) {
    const FileList group{{.Name = R"(D:\A_1.mp3)", .FileDate = {2}},
                         {.Name = R"(D:\A_2.mp3)", .FileDate = {1}}};
    EXPECT_THAT(Names(ProcessFlatTracks(group)), ElementsAre(R"(D:\A_2.mp3)", R"(D:\A_1.mp3)"));
}

TEST(TrackTagOf, TakesNumberAndLength) {
    const TrackTag tag = TrackTagOf(support::TagOfRecord("TAG|a|b|c|1999|x Length='245' y||7|"));
    EXPECT_EQ(tag.number, "7");
    EXPECT_EQ(tag.seconds, "245");
}

TEST(TrackTagOf, TakesNoLengthThatTheFieldMayHaveCut) {
    EXPECT_EQ(TrackTagOf(support::TagOfRecord("TAG|a|b|c|1999|Length='245||7|")).seconds, "");
    EXPECT_EQ(TrackTagOf(support::TagOfRecord("TAG|a|b|c|1999|a comment|||")).seconds, "");
    EXPECT_EQ(TrackTagOf(Tag()).number, "");
}

TEST(TrackTagOf, TakesWhatABarHasShiftedIntoThePlace) {
    Tag tag = support::TagOfRecord("TAG|song|a|b|1999|Length='9'||7|Rock|");
    tag.song = "so|n|g";
    EXPECT_EQ(TrackTagOf(tag).number, "Length='9'");
    EXPECT_EQ(TrackTagOf(tag).seconds, "");
}

TEST(FileCount, OverflowsBeyond16Bits) {
    EXPECT_EQ(FileCount(32767), 32767);
    try {
        FileCount(32768);
        FAIL();
    } catch (const Failure& failure) {
        EXPECT_EQ(failure.Number(), FailureNumber::Overflow);
    }
}

}  // namespace
}  // namespace quillon
