#include "changes/journalled_files.h"

#include <gtest/gtest.h>
#include <optional>
#include <string>
#include <vector>

#include "tests/support/fake_files.h"
#include "tests/support/record_list.h"

namespace quillon {
namespace {

using Kind = FileChange::Kind;

class JournalledFilesTest : public testing::Test {
  protected:
    JournalledFilesTest() {
        fake_.AddFolder(R"(H:\host\Changes)");
        fake_.AddFile(R"(D:\a.txt)", "old", Then);
    }

    JournalledFiles::Keeping Keep() {
        return {.folder = R"(H:\host\Changes\now)",
                .shownFolder = "Changes/now",
                .placeOfDeleted = [](std::string_view path) -> std::optional<std::string> {
                    if (path.ends_with(".mp3")) return "Removed/now/x.mp3";
                    return std::nullopt;
                },
                .isScratch = [](std::string_view path) { return path.ends_with(".scratch"); }};
    }

    /// The only change that has been recorded; it has come off.
    FileChange Only() {
        EXPECT_EQ(list_.records.size(), 1U);
        return list_.records.empty() ? FileChange{} : std::get<FileChange>(list_.records.front());
    }
    static FileChange Numbered(FileChange change) {
        change.number = 1;
        return change;
    }
    static FileContent Content(const std::string& bytes, std::optional<DateTime> time = {}) {
        return {.size = bytes.size(), .hash = ContentHash(bytes), .bytes = bytes, .modified = time};
    }

    static constexpr DateTime Then{45000.25};
    fakes::Calls calls_;
    fakes::FakeFiles fake_{calls_};
    RecordList list_;
    JournalledFiles files_{fake_, list_, Keep()};
};

TEST_F(JournalledFilesTest, LetsCopiesBeWatched) {
    std::uint64_t copied = 0;
    files_.WatchCopies([&copied](std::uint64_t bytes) { copied += bytes; });
    files_.CopyFile(R"(D:\a.txt)", R"(D:\b.txt)", false);
    EXPECT_EQ(copied, 3U);
}

TEST_F(JournalledFilesTest, RecordsAWrittenTextWithWhatWasThereBefore) {
    const auto writer = files_.CreateText(R"(D:\a.txt)");
    writer->Write("\xC3\xA9");
    writer->WriteLine("x");
    EXPECT_TRUE(list_.records.empty()) << "no file has changed yet";
    EXPECT_EQ(fake_.Content(R"(D:\a.txt)"), "old");
    writer->Close();
    EXPECT_EQ(Only(), Numbered({.kind = Kind::Written,
                                .path = R"(D:\a.txt)",
                                .before = Content("old", Then),
                                .after = Content("\xE9x\r\n")}));
    EXPECT_EQ(fake_.Content(R"(D:\a.txt)"), "\xE9x\r\n");
}

TEST_F(JournalledFilesTest, RecordsOfANewTextNoMoreThanWhatRecognisesIt) {
    const auto writer = files_.CreateOwnText(R"(D:\b.txt)");
    writer->WriteBytes("new");
    EXPECT_TRUE(writer->CloseIf([] { return true; }));
    FileContent after = Content("new");
    after.bytes.reset();
    EXPECT_EQ(Only(), Numbered({.kind = Kind::Written, .path = R"(D:\b.txt)", .after = after}));
}

TEST_F(JournalledFilesTest, RecordsNothingOfATextThatIsNotWanted) {
    const auto writer = files_.CreateText(R"(D:\a.txt)");
    writer->Write("new");
    EXPECT_FALSE(writer->CloseIf([] { return false; }));
    EXPECT_TRUE(list_.records.empty());
    EXPECT_EQ(fake_.Content(R"(D:\a.txt)"), "old");
}

TEST_F(JournalledFilesTest, KeepsALargeFileThatIsReplacedBesideTheJournal) {
    const std::string large(JournalledFiles::MostInRecord + 1, 'x');
    fake_.AddFile(R"(D:\a.txt)", large, Then);
    const auto writer = files_.CreateText(R"(D:\a.txt)");
    writer->WriteBytes(large + "y");
    writer->Close();
    const FileChange change = Only();
    EXPECT_EQ(
        change.before,
        (FileContent{.size = large.size(), .keptAs = "Changes/now/1/a.txt", .modified = Then}));
    EXPECT_EQ(change.after,
              (FileContent{.size = large.size() + 1, .hash = ContentHash(large + "y")}));
    EXPECT_EQ(fake_.Content(R"(H:\host\Changes\now\1\a.txt)"), large);
    EXPECT_TRUE(files_.HasKept());
}

TEST_F(JournalledFilesTest, RecordsEachTextOfABatch) {
    std::vector<bool> done;
    const auto batch =
        files_.CreateTexts([&](const Failure* failure) { done.push_back(failure == nullptr); });
    batch->Write(R"(D:\a.txt)", "1");
    batch->Write(R"(D:\b.txt)", "2");
    calls_.Refuse(R"(Name D:\b.txt)", FailureNumber::PermissionDenied, "x");
    batch->Close();
    EXPECT_EQ(done, (std::vector<bool>{true, false}));
    ASSERT_EQ(list_.records.size(), 3U);
    EXPECT_EQ(std::get<FileChange>(list_.records[0]).before, Content("old", Then));
    EXPECT_EQ(std::get<FileChange>(list_.records[0]).after, Content("1"));
    EXPECT_EQ(std::get<FileChange>(list_.records[1]).number, 2U);
    EXPECT_EQ(std::get<FileChangeFailed>(list_.records[2]).number, 2U);
}

TEST_F(JournalledFilesTest, RecordsATextOfABatchThatCannotBeWritten) {
    const auto batch = files_.CreateTexts([](const Failure*) {});
    calls_.Refuse(R"(CreateText D:\b.txt)", FailureNumber::PermissionDenied, "x");
    EXPECT_THROW(batch->Write(R"(D:\b.txt)", "2"), Failure);
    batch->Write(R"(D:\a.txt)", "1");
    batch->Close();
    ASSERT_EQ(list_.records.size(), 3U);
    EXPECT_EQ(std::get<FileChangeFailed>(list_.records[1]).number, 1U);
    EXPECT_EQ(std::get<FileChange>(list_.records[2]).number, 2U);
}

TEST_F(JournalledFilesTest, RecordsATagThatIsPutBehindTheFile) {
    files_.WriteEnd(R"(D:\a.txt)", {.size = 3, .bytes = {'l', 'd'}}, 3,
                    std::vector<std::uint8_t>{'T', 'A', 'G'});
    EXPECT_EQ(Only(), Numbered({.kind = Kind::EndWritten,
                                .path = R"(D:\a.txt)",
                                .position = 3,
                                .before = FileContent{.size = 3, .bytes = ""},
                                .after = FileContent{.size = 6, .bytes = "TAG"}}));
    EXPECT_EQ(fake_.Content(R"(D:\a.txt)"), "oldTAG");
}

TEST_F(JournalledFilesTest, RecordsTheBytesThatATagReplaces) {
    for (const std::size_t from : {1U, 2U}) {
        list_.records.clear();
        fake_.AddFile(R"(D:\a.txt)", "old");
        const std::string seen = std::string("old").substr(from);
        files_.WriteEnd(R"(D:\a.txt)", {.size = 3, .bytes = {seen.begin(), seen.end()}}, 1,
                        std::vector<std::uint8_t>{'X', 'Y', 'Z'});
        ASSERT_EQ(list_.records.size(), 1U);
        const auto change = std::get<FileChange>(list_.records[0]);
        EXPECT_EQ(change.position, 1U);
        EXPECT_EQ(change.before, (FileContent{.size = 3, .bytes = "ld"})) << from;
        EXPECT_EQ(change.after, (FileContent{.size = 4, .bytes = "XYZ"}));
    }
}

TEST_F(JournalledFilesTest, RecordsThePieceThatOthersReplace) {
    files_.ReplaceBytes(R"(D:\a.txt)", {.size = 3, .position = 1, .bytes = {'l'}},
                        std::vector<std::uint8_t>{'X', 'Y'});
    EXPECT_EQ(Only(), Numbered({.kind = Kind::PieceReplaced,
                                .path = R"(D:\a.txt)",
                                .position = 1,
                                .before = FileContent{.size = 3, .bytes = "l"},
                                .after = FileContent{.size = 4, .hash = ContentHash("XY")}}));
    EXPECT_EQ(fake_.Content(R"(D:\a.txt)"), "oXYd");
}

TEST_F(JournalledFilesTest, RecordsBothPiecesWhereOneIsWrittenOverTheOther) {
    files_.ReplaceBytes(R"(D:\a.txt)", {.size = 3, .position = 1, .bytes = {'l'}},
                        std::vector<std::uint8_t>{'X'});
    EXPECT_EQ(Only().before->bytes, "l");
    EXPECT_EQ(Only().after->bytes, "X");
    EXPECT_EQ(list_.durable, 0U);
}

TEST_F(JournalledFilesTest, WhatAPowerCutMayLeaveInPartIsRecordedForGoodBefore) {
    const std::string old(1500, 'x');
    fake_.AddFile(R"(D:\a.txt)", old);
    files_.ReplaceBytes(R"(D:\a.txt)", {.size = 1500, .position = 511, .bytes = {'x', 'x'}},
                        std::vector<std::uint8_t>{'X', 'Y'});
    EXPECT_EQ(list_.durable, 1U);
    const auto end = [](std::size_t size) { return std::vector<std::uint8_t>(size, 'T'); };
    // In one block.
    files_.WriteEnd(R"(D:\a.txt)", {.size = 1500, .bytes = {'x'}}, 1499, end(1));
    EXPECT_EQ(list_.durable, 1U);
    files_.WriteEnd(R"(D:\a.txt)", {.size = 1500, .bytes = {'T'}}, 1500, end(100));
    EXPECT_EQ(list_.durable, 3U);
}

TEST_F(JournalledFilesTest, NoMoreThanSixteenTagsWaitForARecordThatLasts) {
    fake_.AddFile(R"(D:\a.txt)", std::string(600, 'x'));
    for (int i = 0; i < 40; ++i) {
        const auto before = static_cast<std::uint8_t>(i == 0 ? 'x' : 'A' + i - 1);
        files_.WriteEnd(R"(D:\a.txt)", {.size = 600, .bytes = {before}}, 599,
                        std::vector{static_cast<std::uint8_t>('A' + i)});
        EXPECT_LT(list_.records.size() - list_.durable, 16U);
    }
    EXPECT_EQ(list_.flushes, 2U);
}

TEST_F(JournalledFilesTest, WhatCannotBeRecordedForGoodIsNotWrittenOverOtherBytes) {
    fake_.AddFile(R"(D:\a.txt)", std::string(600, 'x'));
    list_.isDurableRefused = true;
    EXPECT_THROW(
        files_.ReplaceBytes(R"(D:\a.txt)", {.size = 600, .position = 511, .bytes = {'x', 'x'}},
                            std::vector<std::uint8_t>{'X', 'Y'}),
        Failure);
    EXPECT_EQ(fake_.Content(R"(D:\a.txt)"), std::string(600, 'x'));
    ASSERT_EQ(list_.records.size(), 2U);
    EXPECT_EQ(std::get<FileChangeFailed>(list_.records[1]).number, 1U);
}

TEST_F(JournalledFilesTest, KeepsAPieceThatIsTooLargeForARecord) {
    const std::string piece(JournalledFiles::MostInRecord + 1, 'x');
    fake_.AddFile(R"(D:\a.txt)", piece + "sound");
    files_.ReplaceBytes(
        R"(D:\a.txt)",
        {.size = piece.size() + 5, .position = 0, .bytes = {piece.begin(), piece.end()}}, {});
    const FileChange change = Only();
    EXPECT_FALSE(change.before->bytes);
    ASSERT_NE(change.before->keptAs, "");
    EXPECT_EQ(fake_.Content(R"(D:\a.txt)"), "sound");
}

TEST_F(JournalledFilesTest, RecordsACopyWithItsSizeAndTime) {
    files_.CopyFile(R"(D:\a.txt)", R"(D:\b.txt)", false);
    EXPECT_EQ(Only(), Numbered({.kind = Kind::Copied,
                                .path = R"(D:\a.txt)",
                                .target = R"(D:\b.txt)",
                                .after = FileContent{.size = 3, .modified = Then}}));
}

TEST_F(JournalledFilesTest, RecordsWhatACopyReplaces) {
    fake_.AddFile(R"(D:\b.txt)", "other");
    files_.CopyFile(R"(D:\a.txt)", R"(D:\b.txt)", true);
    EXPECT_EQ(Only().before, Content("other", DateTime{}));
}

TEST_F(JournalledFilesTest, RecordsARename) {
    files_.MoveFile(R"(D:\a.txt)", R"(D:\b.txt)");
    EXPECT_EQ(Only(), Numbered({.kind = Kind::Moved,
                                .path = R"(D:\a.txt)",
                                .target = R"(D:\b.txt)",
                                .before = FileContent{.size = 3, .modified = Then}}));
}

TEST_F(JournalledFilesTest, RecordsTheContentOfADeletedFile) {
    files_.DeleteFile(R"(D:\a.txt)");
    EXPECT_EQ(
        Only(),
        Numbered({.kind = Kind::Deleted, .path = R"(D:\a.txt)", .before = Content("old", Then)}));
    EXPECT_FALSE(fake_.FileExists(R"(D:\a.txt)"));
}

TEST_F(JournalledFilesTest, RecordsWhereDeletedMusicGoes) {
    fake_.AddFile(R"(D:\a.mp3)", "music", Then);
    files_.DeleteFile(R"(D:\a.mp3)");
    EXPECT_EQ(Only().before,
              (FileContent{.size = 5, .keptAs = "Removed/now/x.mp3", .modified = Then}));
    EXPECT_FALSE(files_.HasKept());
}

TEST_F(JournalledFilesTest, RecordsAnnouncedMovesTogetherBeforeTheFirst) {
    fake_.AddFile(R"(D:\b.txt)", "other", Then);
    const std::vector<FileMove> moves{{R"(D:\a.txt)", R"(D:\c.txt)"},
                                      {R"(D:\b.txt)", R"(D:\d.txt)"}};
    {
        const auto announced = files_.Announce(moves);
        ASSERT_EQ(list_.records.size(), 2U);
        for (const ChangeRecord& record : list_.records)
            EXPECT_EQ(std::get<FileChange>(record).group, 1U);
        EXPECT_TRUE(fake_.FileExists(R"(D:\a.txt)"));
        files_.MoveFile(R"(D:\a.txt)", R"(D:\c.txt)");
        EXPECT_EQ(list_.records.size(), 2U);
        EXPECT_EQ(list_.durable, 2U);
    }
    // The other one will not happen.
    EXPECT_EQ(list_.records.back(), ChangeRecord(FileChangeFailed{2, "it was not begun"}));
    EXPECT_TRUE(fake_.FileExists(R"(D:\c.txt)"));
    EXPECT_TRUE(fake_.FileExists(R"(D:\b.txt)"));
}

TEST_F(JournalledFilesTest, RecordsFoldersThatAreMadeCopiedAndMoved) {
    files_.CreateFolder(R"(D:\f)");
    files_.CopyFolder(R"(D:\f)", R"(D:\g)");
    files_.MoveFolder(R"(D:\g)", R"(D:\h)");
    EXPECT_EQ(
        list_.records,
        (std::vector<ChangeRecord>{
            FileChange{.number = 1, .kind = Kind::FolderMade, .path = R"(D:\f)"},
            FileChange{
                .number = 2, .kind = Kind::FolderCopied, .path = R"(D:\f)", .target = R"(D:\g)"},
            FileChange{
                .number = 3, .kind = Kind::FolderMoved, .path = R"(D:\g)", .target = R"(D:\h)"}}));
}

TEST_F(JournalledFilesTest, MovesADeletedFolderBesideTheJournal) {
    fake_.AddFile(R"(D:\pages\1.htm)", "page");
    files_.DeleteFolder(R"(D:\pages)");
    EXPECT_EQ(Only(), Numbered({.kind = Kind::FolderDeleted,
                                .path = R"(D:\pages)",
                                .before = FileContent{.keptAs = "Changes/now/1/pages"}}));
    EXPECT_FALSE(fake_.FolderExists(R"(D:\pages)"));
    EXPECT_EQ(fake_.Content(R"(H:\host\Changes\now\1\pages\1.htm)"), "page");
}

TEST_F(JournalledFilesTest, CopiesADeletedFolderWhereItCannotBeMoved) {
    fake_.AddFile(R"(D:\pages\1.htm)", "page");
    calls_.Refuse(R"(MoveFolder D:\pages -> H:\host\Changes\now\1\pages)",
                  FailureNumber::PermissionDenied, "x");
    files_.DeleteFolder(R"(D:\pages)");
    EXPECT_EQ(list_.records.size(), 1U);
    EXPECT_FALSE(fake_.FolderExists(R"(D:\pages)"));
    EXPECT_EQ(fake_.Content(R"(H:\host\Changes\now\1\pages\1.htm)"), "page");
}

TEST_F(JournalledFilesTest, DeletesForGoodAFolderThatTheRunItselfHasMade) {
    files_.CreateFolder(R"(D:\draft)");
    files_.MoveFolder(R"(D:\draft)", R"(D:\pages)");
    files_.CreateFolder(R"(D:\pages\inner)");
    files_.DeleteFolder(R"(D:\pages\inner)");
    EXPECT_EQ(std::get<FileChange>(list_.records.back()).before, FileContent{});
    EXPECT_FALSE(files_.HasKept());
}

TEST_F(JournalledFilesTest, DeletesForGoodAScratchFolderOfAnEarlierRun) {
    fake_.AddFile(R"(D:\pages.scratch\1.htm)", "page");
    files_.DeleteFolder(R"(D:\pages.scratch)");
    EXPECT_EQ(Only().before, FileContent{});
    EXPECT_FALSE(files_.HasKept());
    EXPECT_FALSE(fake_.FolderExists(R"(D:\pages.scratch)"));
}

TEST_F(JournalledFilesTest, RecordsWhatIsTakenBack) {
    files_.Discard(R"(D:\a.txt)");
    EXPECT_EQ(Only(), Numbered({.kind = Kind::Discarded, .path = R"(D:\a.txt)"}));
}

TEST_F(JournalledFilesTest, RecordsNothingOfTheRunsOwnScratchFiles) {
    const auto writer = files_.CreateOwnText(R"(D:\x.scratch)");
    writer->Write("x");
    writer->Close();
    EXPECT_EQ(fake_.Content(R"(D:\x.scratch)"), "x");
    files_.DeleteFile(R"(D:\x.scratch)");
    EXPECT_TRUE(list_.records.empty());
}

TEST_F(JournalledFilesTest, RecordsThatAChangeHasNotComeOff) {
    calls_.Refuse(R"(MoveFile D:\a.txt -> D:\b.txt)", FailureNumber::PermissionDenied, "x");
    EXPECT_THROW(files_.MoveFile(R"(D:\a.txt)", R"(D:\b.txt)"), Failure);
    ASSERT_EQ(list_.records.size(), 2U);
    EXPECT_EQ(std::get<FileChangeFailed>(list_.records[1]).number, 1U);
    EXPECT_NE(std::get<FileChangeFailed>(list_.records[1]).reason, "");
}

}  // namespace
}  // namespace quillon
