#include "reconcile/file_list.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/failure.h"

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
    const std::vector<FileEntry> folder{File("a.mp3", 3), File("b.MP3", 1), File("c.jpg", 0),
                                        File("d.mp3", 2)};
    const FileList files = ProcessAlbumTracks(folder);
    EXPECT_THAT(Names(files), ElementsAre(R"(D:\b.MP3)", R"(D:\d.mp3)", R"(D:\a.mp3)"));
    EXPECT_EQ(files[0].ID, 0);
    EXPECT_EQ(files[0].FileDate.days, 1);
}

TEST(ProcessAlbumTracks, KeepsTheFoldersOrderAmongFilesOfOneAge) {
    const std::vector<FileEntry> folder{File("a.mp3", 1), File("b.mp3", 1), File("c.mp3", 0),
                                        File("d.mp3", 1)};
    EXPECT_THAT(Names(ProcessAlbumTracks(folder)),
                ElementsAre(R"(D:\c.mp3)", R"(D:\a.mp3)", R"(D:\b.mp3)", R"(D:\d.mp3)"));
}

TEST(ProcessFlatTracks, ListsAllFilesOfTheGroupOldestFirst) {
    const std::vector<FileEntry> group{File("A_1.mp3", 2), File("A_2.mp3", 1)};
    EXPECT_THAT(Names(ProcessFlatTracks(group)), ElementsAre(R"(D:\A_2.mp3)", R"(D:\A_1.mp3)"));
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
