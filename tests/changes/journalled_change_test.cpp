#include <cstdint>
#include <functional>
#include <gtest/gtest.h>
#include <string>
#include <utility>
#include <vector>

#include "changes/journalled_files.h"
#include "tests/support/fake_files.h"
#include "tests/support/record_list.h"

namespace quillon {
namespace {

/// Each change that there is, on files of its own.
struct Trial {
    std::string call;  ///< begins what the files below are asked to do
    std::function<void(Files&)> work;
};

std::vector<Trial> Trials() {
    return {
        {"CreateFolder", [](Files& files) { files.CreateFolder(R"(D:\new)"); }},
        {"CopyFile", [](Files& files) { files.CopyFile(R"(D:\a.txt)", R"(D:\b.txt)", true); }},
        {"CopyFolder", [](Files& files) { files.CopyFolder(R"(D:\f)", R"(D:\g)"); }},
        {"DeleteFile", [](Files& files) { files.DeleteFile(R"(D:\a.txt)"); }},
        {"MoveFolder", [](Files& files) { files.DeleteFolder(R"(D:\f)"); }},
        {"Discard", [](Files& files) { files.Discard(R"(D:\a.txt)"); }},
        {"MoveFile", [](Files& files) { files.MoveFile(R"(D:\a.txt)", R"(D:\b.txt)"); }},
        {"MoveFolder", [](Files& files) { files.MoveFolder(R"(D:\f)", R"(D:\g)"); }},
        {"WriteEnd",
         [](Files& files) {
             files.WriteEnd(R"(D:\a.txt)", {.size = 3, .bytes = {'d'}}, 3,
                            std::vector<std::uint8_t>{'x'});
         }},
        {"ReplaceBytes",
         [](Files& files) {
             files.ReplaceBytes(R"(D:\a.txt)", {.size = 3, .position = 0, .bytes = {'o'}},
                                std::vector<std::uint8_t>{'x'});
         }},
        {"Name",
         [](Files& files) {
             const auto batch = files.CreateTexts([](const Failure*) {});
             batch->Write(R"(D:\a.txt)", "x");
             batch->Close();
         }},
    };
}

TEST(JournalledChange, IsRecordedBeforeItHappens) {
    for (const Trial& trial : Trials()) {
        fakes::Calls calls;
        fakes::FakeFiles fake(calls);
        fake.AddFile(R"(D:\a.txt)", "old");
        fake.AddFolder(R"(D:\f)");
        RecordList list;
        bool happened = false;
        list.before = [&](const ChangeRecord&) { happened = !calls.Of({trial.call}).empty(); };
        JournalledFiles files(fake, list, {.folder = R"(H:\c\n)", .shownFolder = "c/n"});
        trial.work(files);
        EXPECT_EQ(list.records.size(), 1U) << trial.call;
        EXPECT_FALSE(happened) << trial.call;
    }
}

TEST(JournalledChange, DoesNotHappenWhereItCannotBeRecorded) {
    for (const Trial& trial : Trials()) {
        fakes::Calls calls;
        fakes::FakeFiles fake(calls);
        fake.AddFolder(R"(H:\c\n\1)");
        fake.AddFile(R"(D:\a.txt)", "old");
        fake.AddFolder(R"(D:\f)");
        const std::vector<std::string> before = fake.Everything();
        RecordList list;
        list.full = true;
        JournalledFiles files(fake, list, {.folder = R"(H:\c\n)", .shownFolder = "c/n"});
        EXPECT_THROW(trial.work(files), Failure) << trial.call;
        EXPECT_EQ(fake.Everything(), before) << trial.call;
        EXPECT_EQ(fake.Content(R"(D:\a.txt)"), "old") << trial.call;
    }
}

/// What is destroyed or moved may be known to its record alone.
TEST(JournalledChange, DoesNotHappenWhereAPowerCutMayLoseItsRecord) {
    std::vector<Trial> trials{
        {"CopyFile", [](Files& files) { files.CopyFile(R"(D:\c.txt)", R"(D:\a.txt)", true); }},
        {"ReplaceBytes",
         [](Files& files) {
             files.ReplaceBytes(R"(D:\a.txt)", {.size = 3, .position = 0, .bytes = {'o'}},
                                std::vector<std::uint8_t>{'x', 'y'});
         }},
        {"Name", [](Files& files) {
             const auto text = files.CreateText(R"(D:\a.txt)");
             text->Write("x");
             text->Close();
         }}};
    for (Trial& trial : Trials())
        if (trial.call == "DeleteFile" || trial.call == "MoveFile" || trial.call == "Name")
            trials.push_back(std::move(trial));
    EXPECT_EQ(trials.size(), 6U);
    for (const Trial& trial : trials) {
        fakes::Calls calls;
        fakes::FakeFiles fake(calls);
        fake.AddFile(R"(D:\a.txt)", "old");
        fake.AddFile(R"(D:\c.txt)", "new");
        const std::vector<std::string> before = fake.Everything();
        RecordList list;
        list.isDurableRefused = true;
        JournalledFiles files(fake, list, {.folder = R"(H:\c\n)", .shownFolder = "c/n"});
        EXPECT_THROW(trial.work(files), Failure) << trial.call;
        EXPECT_EQ(fake.Everything(), before) << trial.call;
        EXPECT_EQ(fake.Content(R"(D:\a.txt)"), "old") << trial.call;
    }
}

TEST(JournalledChange, CostsNothingToRead) {
    fakes::Calls calls;
    fakes::FakeFiles fake(calls);
    fake.AddFile(R"(D:\a.txt)", "old");
    RecordList list;
    JournalledFiles files(fake, list, {});
    static_cast<void>(files.FilesIn("D:\\"));
    static_cast<void>(files.SubFolders("D:\\"));
    static_cast<void>(files.NamesIn("D:\\"));
    static_cast<void>(files.GetFile(R"(D:\a.txt)"));
    static_cast<void>(files.OpenText(R"(D:\a.txt)"));
    static_cast<void>(files.OpenBinary(R"(D:\a.txt)"));
    files.RemoveUnfinished("D:\\");
    EXPECT_TRUE(files.FileExists(R"(D:\a.txt)"));
    EXPECT_FALSE(files.FolderExists(R"(D:\a.txt)"));
    EXPECT_TRUE(list.records.empty());
    EXPECT_EQ(calls.Made().size(), 6U) << "one of each that is noted";
}

}  // namespace
}  // namespace quillon
