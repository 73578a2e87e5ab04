#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>

#include "platform/failure.h"
#include "tests/outside/child_process.h"
#include "tests/platform/files_fixture.h"

namespace quillon {
namespace {

constexpr const char* Path = R"(D:\x.mp3)";

class WriteEndTest : public FilesTest {
  protected:
    WriteEndTest() { folder_.MakeFile("x.mp3", "audio and end"); }

    static std::vector<std::uint8_t> Bytes(std::string_view text) {
        return {text.begin(), text.end()};
    }

    /// Overwrites the last three bytes ("end") or, at position 13, appends.
    void Write(std::string_view bytes, std::uint64_t position = 10) {
        files_.WriteEnd(Path, {.size = 13, .bytes = Bytes("end")}, position, Bytes(bytes));
    }

    std::string WhatFails(std::string_view bytes, std::uint64_t position = 10) {
        return FailureOf([&] { Write(bytes, position); });
    }

    std::string Content() { return folder_.Content("x.mp3"); }
    FileFacts Facts() { return *FactsOf((folder_ / "x.mp3").string()); }
    void SetModified(std::int64_t seconds, std::int32_t nanoseconds) {
        outside::SetModified(folder_ / "x.mp3", seconds, nanoseconds);
    }
};

TEST_F(WriteEndTest, OverwritesTheLastBytesInPlace) {
    Write("END");
    EXPECT_EQ(Content(), "audio and END");
}

TEST_F(WriteEndTest, Appends) {
    Write(" more", 13);
    EXPECT_EQ(Content(), "audio and end more");
}

TEST_F(WriteEndTest, MayReachBeyondTheOldEnd) {
    Write("END and more");
    EXPECT_EQ(Content(), "audio and END and more");
}

TEST_F(WriteEndTest, CutsOffWhatWasSeenAndKeepsTheTime) {
    SetModified(1700000000, 123456700);
    files_.WriteEnd(Path, {.size = 13, .bytes = Bytes(" end")}, 9, {});
    EXPECT_EQ(Content(), "audio and");
    EXPECT_EQ(Facts().modified.seconds, 1700000000);
    EXPECT_EQ(Facts().modified.nanoseconds, 123456700);
}

TEST_F(WriteEndTest, CutsNothingThatWasNotSeen) {
    const std::string refusal =
        FailureOf([&] { files_.WriteEnd(Path, {.size = 13, .bytes = Bytes("end")}, 9, {}); });
    EXPECT_THAT(refusal, testing::HasSubstr("Invalid procedure call"));
    EXPECT_EQ(Content(), "audio and end");
}

TEST_F(WriteEndTest, CutsNothingOfAFileThatHasChanged) {
    const std::string refusal =
        FailureOf([&] { files_.WriteEnd(Path, {.size = 13, .bytes = Bytes("END")}, 10, {}); });
    EXPECT_THAT(refusal, testing::HasSubstr("it has changed meanwhile"));
    EXPECT_EQ(Content(), "audio and end");
}

TEST_F(WriteEndTest, KeepsTheModificationTimeToTheFractionOfASecond) {
    SetModified(1'234'567'890, 123'456'700);
    Write("END");
    EXPECT_EQ(Facts().modified.seconds, 1'234'567'890);
    EXPECT_EQ(Facts().modified.nanoseconds, 123'456'700);
    files_.WriteEnd(Path, {.size = 13, .bytes = {}}, 13, Bytes("more"));
    EXPECT_EQ(Facts().modified.seconds, 1'234'567'890);
    EXPECT_EQ(Facts().modified.nanoseconds, 123'456'700);
}

POSIX_TEST_F(WriteEndTest, KeepsHardAndSymbolicLinks) {
    std::filesystem::create_hard_link(folder_ / "x.mp3", folder_ / "hard");
    std::filesystem::create_symlink("x.mp3", folder_ / "soft.mp3");
    const FileIdentity before = Facts().identity;
    files_.WriteEnd(R"(D:\soft.mp3)", {.size = 13, .bytes = Bytes("end")}, 10, Bytes("END"));
    EXPECT_EQ(folder_.Content("hard"), "audio and END");
    EXPECT_TRUE(std::filesystem::is_symlink(folder_ / "soft.mp3"));
    EXPECT_EQ(Facts().identity, before);
    EXPECT_EQ(std::filesystem::hard_link_count(folder_ / "hard"), 2U);
}

TEST_F(WriteEndTest, FindsTheFileWhateverTheLetterCase) {
    files_.WriteEnd(R"(D:\X.MP3)", {.size = 13, .bytes = Bytes("end")}, 10, Bytes("END"));
    EXPECT_EQ(Content(), "audio and END");
    EXPECT_EQ(folder_.Count(), 1U);
}

TEST_F(WriteEndTest, NeverCutsAFileOrLeavesAGap) {
    const std::string refused = "Invalid procedure call or argument: D:\\x.mp3";
    EXPECT_EQ(WhatFails("EN"), refused);
    EXPECT_EQ(WhatFails("", 0), refused);
    EXPECT_EQ(WhatFails("more", 14), refused);
    EXPECT_EQ(Content(), "audio and end");
}

TEST_F(WriteEndTest, RefusesAFileThatIsNotAsItWasSeen) {
    const std::string changed = "Path/File access error: D:\\x.mp3 (it has changed meanwhile)";
    for (const char* content : {"audio", "", "audio and END", "audio and the end", "end"}) {
        folder_.MakeFile("x.mp3", content);
        EXPECT_EQ(WhatFails("END"), changed);
        EXPECT_EQ(Content(), content);
    }
    folder_.MakeFile("x.mp3", "nd");
    EXPECT_EQ(FailureOf([&] {
                  files_.WriteEnd(Path, {.size = 2, .bytes = Bytes("end")}, 2, Bytes("more"));
              }),
              changed);
}

TEST_F(WriteEndTest, SaysWhenThereIsNoFile) {
    std::filesystem::remove(folder_ / "x.mp3");
    EXPECT_EQ(WhatFails("END"), "File not found: D:\\x.mp3");
    folder_.MakeFolder("x.mp3");
    EXPECT_EQ(WhatFails("END"), "Permission denied: D:\\x.mp3");
}

TEST_F(WriteEndTest, RefusesAPathThatWindowsCannotHold) {
    EXPECT_EQ(FailureOf([&] {
                  files_.WriteEnd(R"(D:\..\x.mp3)", {.size = 13, .bytes = {}}, 13, Bytes("more"));
              }).substr(0, 13),
              "Bad file name");
}

POSIX_TEST_F(WriteEndTest, LeavesAWriteProtectedFileAlone) {
    outside::SetRights(folder_ / "x.mp3", 0444);
    EXPECT_EQ(outside::AsOrdinaryUser([&] { return WhatFails("END"); }),
              "Permission denied: D:\\x.mp3");
    EXPECT_EQ(Content(), "audio and end");
}

POSIX_TEST_F(WriteEndTest, LeavesAFileAloneWhoseTimeItCouldNotKeep) {
    // Anyone may write it, but its times belong to its owner, who is another account where the
    // super-user runs this.
    outside::SetRights(folder_ / "x.mp3", 0666);
    const bool isAnothers = outside::IsSuperUser();
    EXPECT_EQ(outside::AsOrdinaryUser([&] { return WhatFails("END"); }),
              isAnothers ? "Permission denied: D:\\x.mp3" : "");
    EXPECT_EQ(Content(), isAnothers ? "audio and end" : "audio and END");
}

POSIX_TEST_F(WriteEndTest, TakesBackWhatItAppendedToAFullDisk) {
    SetModified(1'234'567'890, 5);
    for (const std::size_t room : {13U, 14U, 17U}) {
        EXPECT_EQ(outside::WithFilesUpTo(room, [&] { return WhatFails(" more", 13); }),
                  "Disk full: D:\\x.mp3");
        EXPECT_EQ(Content(), "audio and end");
        EXPECT_EQ(Facts().modified.seconds, 1'234'567'890);
        EXPECT_EQ(Facts().modified.nanoseconds, 5);
    }
}

POSIX_TEST_F(WriteEndTest, GivesTheOldBytesBackWhenTheDiskFillsMidway) {
    for (const std::size_t room : {10U, 11U, 13U, 15U}) {
        EXPECT_EQ(outside::WithFilesUpTo(room, [&] { return WhatFails("NEW END"); }),
                  "Disk full: D:\\x.mp3");
        EXPECT_EQ(Content(), "audio and end");
    }
}

}  // namespace
}  // namespace quillon
