#include "changes/preview_files.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <functional>
#include <gtest/gtest.h>
#include <random>
#include <sstream>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "platform/portable/system_clock.h"
#include "tests/changes/sample_disk.h"
#include "tests/platform/failure_of.h"

namespace quillon {
namespace {

using Operation = std::function<void(Files&)>;

/// The same done to files of the disk and to a preview of another disk just like it.
class PreviewFilesTest : public ::testing::Test {
  protected:
    /// Both take it alike, and are alike afterwards.
    void Both(const std::string& what, const Operation& operation) {
        SCOPED_TRACE(what);
        const std::string failure = FailureOf([&] { operation(real_.files); });
        EXPECT_EQ(FailureOf([&] { operation(preview_); }), failure);
        EXPECT_EQ(Description(preview_), Description(real_.files));
    }

    ~PreviewFilesTest() override { EXPECT_EQ(SeenOnDisk(ground_.folder.Path()), before_); }

    Disk real_, ground_;
    SystemClock clock_;
    std::string before_ = SeenOnDisk(ground_.folder.Path());
    PreviewFiles preview_{ground_.files, clock_};
};

void WriteText(Files& files, std::string_view path, std::string_view text) {
    const auto writer = files.CreateText(path);
    writer->WriteLine(text);
    writer->Close();
}

/// Writes so many bytes over a file's last ones and `more` behind them.
void WriteTag(Files& files, const std::string& path, std::size_t count, std::size_t more,
              char letter) {
    FileEnd seen;
    const auto reader = files.OpenBinary(path);
    seen.size = reader->Size();
    count = std::min<std::size_t>(count, seen.size);
    reader->SetPosition(seen.size - count);
    seen.bytes = reader->Read(count);
    files.WriteEnd(path, seen, seen.size - count,
                   std::vector<std::uint8_t>(count + more, static_cast<std::uint8_t>(letter)));
}

/// Puts bytes in the place of so many from a position on.
void ReplacePiece(Files& files, const std::string& path, std::uint64_t position, std::size_t count,
                  std::string_view bytes) {
    FilePiece seen{.size = 0, .position = position, .bytes = {}};
    {
        const auto reader = files.OpenBinary(path);
        seen.size = reader->Size();
        reader->SetPosition(position);
        seen.bytes = reader->Read(count);
    }
    files.ReplaceBytes(path, seen, std::vector<std::uint8_t>(bytes.begin(), bytes.end()));
}

TEST_F(PreviewFilesTest, IsTheDiskWhileNothingWasDone) {
    EXPECT_EQ(Description(preview_), Description(real_.files));
    EXPECT_EQ(FailureOf([&] { preview_.FilesIn(R"(D:\No)"); }),
              FailureOf([&] { real_.files.FilesIn(R"(D:\No)"); }));
    EXPECT_FALSE(preview_.FileExists("nonsense"));
    EXPECT_FALSE(preview_.FolderExists(R"(X:\not mapped)"));
}

TEST_F(PreviewFilesTest, RenamesFollowOneAnother) {
    const std::string gold = R"(D:\Music\Abba\Gold\)";
    Both("a free name", [&](Files& f) { f.MoveFile(gold + "01 One.mp3", gold + "03 x.mp3"); });
    Both("the name that is free now",
         [&](Files& f) { f.MoveFile(gold + "02 Two.mp3", gold + "01 One.mp3"); });
    Both("in a circle", [&](Files& f) { f.MoveFile(gold + "03 x.mp3", gold + "02 Two.mp3"); });
    Both("letter case", [&](Files& f) { f.MoveFile(gold + "02 two.mp3", gold + "02 TWO.mp3"); });
    Both("the old name in another letter case",
         [&](Files& f) { f.MoveFile(gold + "02 two.mp3", gold + "02 two.MP3"); });
    Both("a taken name", [&](Files& f) { f.MoveFile(gold + "01 one.mp3", gold + "02 two.mp3"); });
    Both("nothing", [&](Files& f) { f.MoveFile(gold + "09.mp3", gold + "10.mp3"); });
    Both("into no folder", [&](Files& f) { f.MoveFile(gold + "01 One.mp3", R"(D:\No\x.mp3)"); });
    Both("elsewhere", [&](Files& f) { f.MoveFile(gold + "01 One.mp3", R"(D:\EMPTY\y.mp3)"); });
}

TEST_F(PreviewFilesTest, TagsAreReadAsTheyWereWritten) {
    const std::string one = R"(D:\Music\Abba\Gold\01 One.mp3)";
    Both("over the old one", [&](Files& f) { WriteTag(f, one, 128, 0, 'a'); });
    Both("once more, longer", [&](Files& f) { WriteTag(f, one, 130, 20, 'b'); });
    Both("a copy", [&](Files& f) { f.CopyFile(one, R"(D:\Empty\copy.mp3)", false); });
    Both("of which the original knows nothing",
         [&](Files& f) { WriteTag(f, R"(D:\Empty\copy.mp3)", 4, 0, 'c'); });
    Both("behind the end of a renamed file", [&](Files& f) {
        f.MoveFile(R"(D:\Music\Abba\Gold\02 Two.mp3)", R"(D:\Music\x.mp3)");
        WriteTag(f, R"(D:\Music\x.mp3)", 0, 128, 'd');
    });
    Both("of a file that has changed since",
         [&](Files& f) { f.WriteEnd(one, {.size = 3, .bytes = {}}, 3, {}); });
    Both("that would leave a gap", [&](Files& f) {
        const FileEnd seen{.size = f.GetFile(one).size, .bytes = {}};
        f.WriteEnd(one, seen, seen.size + 1, {});
    });
    Both("of nothing", [&](Files& f) { f.WriteEnd(R"(D:\no.mp3)", {}, 0, {}); });
}

TEST_F(PreviewFilesTest, PiecesAreReplacedWhereverTheyAre) {
    const std::string one = R"(D:\Music\Abba\Gold\01 One.mp3)";
    Both("as many", [&](Files& f) { ReplacePiece(f, one, 1, 3, "abc"); });
    Both("more", [&](Files& f) { ReplacePiece(f, one, 0, 2, "a longer head"); });
    Both("in what is new", [&](Files& f) { ReplacePiece(f, one, 4, 2, "x"); });
    Both("across both", [&](Files& f) { ReplacePiece(f, one, 8, 9, "yy"); });
    Both("and an end", [&](Files& f) { WriteTag(f, one, 5, 20, 'b'); });
    Both("before that", [&](Files& f) { ReplacePiece(f, one, 2, 1, "zzz"); });
    Both("up to it", [&](Files& f) {
        ReplacePiece(f, one, 3, static_cast<std::size_t>(f.GetFile(one).size) - 5, "end");
    });
    Both("an end over all", [&](Files& f) { WriteTag(f, one, 6, 0, 'c'); });
    Both("a copy", [&](Files& f) { f.CopyFile(one, R"(D:\Empty\copy.mp3)", false); });
    Both("of a renamed file", [&](Files& f) {
        f.MoveFile(R"(D:\Music\Abba\Gold\02 Two.mp3)", R"(D:\Music\x.mp3)");
        ReplacePiece(f, R"(D:\Music\x.mp3)", 0, 1, "more");
    });
    Both("that has changed since",
         [&](Files& f) { f.ReplaceBytes(one, {.size = 3, .position = 0, .bytes = {'x'}}, {}); });
    Both("beyond the end",
         [&](Files& f) { f.ReplaceBytes(one, {.size = 6, .position = 6, .bytes = {'x'}}, {}); });
    Both("of nothing", [&](Files& f) { f.ReplaceBytes(R"(D:\no.mp3)", {}, {}); });
}

TEST_F(PreviewFilesTest, TextsAppearWholeAndOnlyWhenTheyAreClosed) {
    Both("a new one", [](Files& f) { WriteText(f, R"(D:\Lists\new.pla)", "caf\xC3\xA9"); });
    Both("another in its place", [](Files& f) { WriteText(f, R"(D:\LISTS\NEW.PLA)", "other"); });
    Both("over one of the disk", [](Files& f) { WriteText(f, R"(D:\lists\A.PLA)", "changed"); });
    Both("not closed", [](Files& f) { f.CreateText(R"(D:\Lists\b.pla)")->WriteLine("x"); });
    Both("not wanted", [](Files& f) {
        const auto writer = f.CreateText(R"(D:\Lists\a.pla)");
        EXPECT_FALSE(writer->CloseIf([] { return false; }));
    });
    Both("where a folder is", [](Files& f) { f.CreateText(R"(D:\Empty)"); });
    Both("where no folder is", [](Files& f) { f.CreateOwnText(R"(D:\No\x.txt)"); });
    Both("an impossible name", [](Files& f) { f.CreateText(R"(D:\Lists\a?.pla)"); });
    Both("in groups", [](Files& f) {
        int named = 0;
        const auto batch = f.CreateTexts([&](const Failure* failure) {
            EXPECT_EQ(failure, nullptr);
            ++named;
        });
        batch->Write(R"(D:\Lists\g1.pla)", "bytes");
        EXPECT_THROW(batch->Write(R"(D:\No\g.pla)", "bytes"), Failure);
        batch->Write(R"(D:\Lists\g1.pla)", "other bytes");
        EXPECT_FALSE(f.FileExists(R"(D:\Lists\g1.pla)"));
        batch->Close();
        EXPECT_EQ(named, 2);
    });
}

TEST_F(PreviewFilesTest, FoldersMoveWithAllThatWasDoneInThem) {
    Both("make one", [](Files& f) { f.CreateFolder(R"(D:\Pages)"); });
    Both("again", [](Files& f) { f.CreateFolder(R"(D:\pages)"); });
    Both("in none", [](Files& f) { f.CreateFolder(R"(D:\No\x)"); });
    Both("fill it", [](Files& f) { WriteText(f, R"(D:\pages\1.htm)", "page"); });
    Both("rename the old set", [](Files& f) { f.MoveFolder(R"(D:\Music)", R"(D:\Old)"); });
    Both("put the new one there", [](Files& f) { f.MoveFolder(R"(D:\PAGES)", R"(D:\Music)"); });
    Both("change what has moved", [](Files& f) {
        f.DeleteFile(R"(D:\Old\Abba\cover.jpg)");
        WriteText(f, R"(D:\Old\Abba\Gold\new.txt)", "new");
    });
    Both("copy it", [](Files& f) { f.CopyFolder(R"(D:\old)", R"(D:\Music\Copy)"); });
    Both("change only the copy", [](Files& f) {
        f.DeleteFile(R"(D:\Music\Copy\Abba\Gold\NEW.txt)");
        WriteTag(f, R"(D:\Music\Copy\Abba\Gold\02 Two.mp3)", 3, 0, 'z');
    });
    Both("into itself", [](Files& f) { f.CopyFolder(R"(D:\Old)", R"(D:\Old\Abba\Again)"); });
    Both("onto another", [](Files& f) { f.MoveFolder(R"(D:\Old)", R"(D:\Empty)"); });
    Both("delete", [](Files& f) { f.DeleteFolder(R"(D:\Old)"); });
    Both("twice", [](Files& f) { f.DeleteFolder(R"(D:\Old)"); });
    Both("make it new, empty", [](Files& f) { f.CreateFolder(R"(D:\Old)"); });
}

TEST_F(PreviewFilesTest, TakesBackWhatWasMade) {
    Both("a copy", [](Files& f) { f.CopyFile(R"(D:\Lists\a.pla)", R"(D:\Empty\a.pla)", false); });
    Both("a folder that is not empty", [](Files& f) { f.Discard(R"(D:\Empty)"); });
    Both("the copy", [](Files& f) { f.Discard(R"(D:\Empty\a.pla)"); });
    Both("twice", [](Files& f) { f.Discard(R"(D:\Empty\a.pla)"); });
    Both("the empty folder", [](Files& f) { f.Discard(R"(D:\Empty)"); });
    Both("a full one", [](Files& f) { f.Discard(R"(D:\Music)"); });
}

TEST_F(PreviewFilesTest, CopiesReplaceOnlyWhereTheyMay) {
    const std::string list = R"(D:\Lists\a.pla)", image = R"(D:\Music\Abba\cover.jpg)";
    Both("not", [&](Files& f) { f.CopyFile(image, list, false); });
    Both("do", [&](Files& f) { f.CopyFile(image, list, true); });
    Both("itself", [&](Files& f) { f.CopyFile(image, R"(D:\music\abba\COVER.jpg)", true); });
    Both("of nothing", [&](Files& f) { f.CopyFile(R"(D:\no.jpg)", list, true); });
    Both("of a folder", [&](Files& f) { f.CopyFile(R"(D:\Music)", list, true); });
    Both("onto a folder", [&](Files& f) { f.CopyFile(image, R"(D:\Music)", true); });
    Both("delete", [&](Files& f) { f.DeleteFile(list); });
    Both("delete again", [&](Files& f) { f.DeleteFile(list); });
    Both("delete a folder as a file", [&](Files& f) { f.DeleteFile(R"(D:\Music)"); });
    Both("into the gap", [&](Files& f) { f.CopyFile(image, R"(D:\lists\A.pla)", false); });
}

TEST_F(PreviewFilesTest, KnowsWhichFilesAreOne) {
    const std::string one = R"(D:\Music\Abba\Gold\01 One.mp3)";
    Both("prepare", [&](Files& f) {
        f.CopyFile(one, R"(D:\Empty\copy.mp3)", false);
        f.MoveFile(one, R"(D:\Empty\One.mp3)");
        f.CreateFolder(R"(D:\Empty\Inner)");
        f.MoveFolder(R"(D:\Music\Abba)", R"(D:\Empty\Abba)");
        WriteText(f, R"(D:\new.txt)", "new");
        // The comparison alone, of all pairs.
        std::string same;
        const std::array<std::string, 7> paths{
            R"(D:\Empty\copy.mp3)", R"(D:\Empty\ONE.mp3)", one,
            R"(D:\new.txt)",        R"(D:\NEW.txt)",       R"(D:\Empty\Abba\cover.jpg)",
            R"(D:\Lists\a.pla)"};
        for (const std::string& left : paths)
            for (const std::string& right : paths)
                same += f.IsSameFile(left, right) ? '1' : '0';
        const std::array<std::string, 6> folders{
            "D:\\",        R"(D:\Empty)", R"(D:\Empty\Inner)", R"(D:\empty\ABBA\Gold)",
            R"(D:\Music)", R"(D:\No)"};
        for (const std::string& left : folders)
            for (const std::string& right : folders)
                same += f.IsWithin(left, right) ? '1' : '0';
        throw Failure::Described(FailureNumber::Database, same);
    });
}

/// What nobody would think of, the same each time.
TEST_F(PreviewFilesTest, DoesWhatTheDiskDoesWhateverIsDone) {
    std::mt19937 random(20261122);  // NOLINT(bugprone-random-generator-seed)
    const std::array<std::string, 4> names{"a", "B", "b", "c.txt"};
    const auto anyPath = [&] {
        std::string path = "D:";
        for (std::size_t depth = 1 + random() % 3; depth > 0; --depth)
            path += '\\' + names.at(random() % names.size());
        return path;
    };
    for (int i = 0; i < 400 && !HasFailure(); ++i) {
        const std::string from = anyPath(), to = anyPath();
        const auto kind = random() % 9;
        const bool overwrite = random() % 2 == 0;
        Both(std::to_string(i) + ": " + std::to_string(kind) + ' ' + from + ' ' + to,
             [&](Files& f) {
                 switch (kind) {
                     case 0:
                         return f.CreateFolder(from);
                     case 1:
                         return f.CopyFile(from, to, overwrite);
                     case 2:
                         return f.CopyFolder(from, to);
                     case 3:
                         return f.MoveFile(from, to);
                     case 4:
                         return f.MoveFolder(from, to);
                     case 5:
                         return overwrite ? f.DeleteFile(from) : f.Discard(from);
                     case 6:
                         return f.DeleteFolder(from);
                     case 7:
                         return WriteTag(f, from, 2, overwrite ? 3 : 0, 'q');
                     default:
                         return WriteText(f, from, to);
                 }
             });
    }
}

TEST(PreviewFiles, RefusesWhatTheDiskWouldRefuse) {
    Disk disk;
    const SystemClock clock;
    const auto mayWrite = [](const std::string& path) {
        return path != R"(D:\Lists)" && path != R"(D:\Music\Abba\cover.jpg)";
    };
    PreviewFiles files(disk.files, clock,
                       {.mayWrite = mayWrite,
                        .isLink = [](const std::string& path) { return path.ends_with(".own"); }});
    const std::string refused = "Permission denied: ";
    EXPECT_EQ(FailureOf([&] { files.CreateText(R"(D:\Lists\x.pla)"); }),
              refused + R"(D:\Lists\x.pla)");
    EXPECT_EQ(FailureOf([&] { files.DeleteFile(R"(D:\Music\Abba\cover.jpg)"); }),
              refused + R"(D:\Music\Abba\cover.jpg)");
    EXPECT_EQ(FailureOf([&] { files.MoveFile(R"(D:\Lists\a.pla)", R"(D:\a.pla)"); }),
              refused + R"(D:\Lists\a.pla)");
    EXPECT_EQ(FailureOf([&] { WriteTag(files, R"(D:\Music\Abba\cover.jpg)", 1, 0, 'x'); }),
              refused + R"(D:\Music\Abba\cover.jpg)");
    EXPECT_EQ(FailureOf([&] { files.CreateOwnText(R"(D:\x.own)"); }),
              refused + R"(D:\x.own (this is a symbolic link and no file))");
    EXPECT_EQ(FailureOf([&] { files.CreateText(R"(D:\Empty\x.pla)"); }), "");
}

}  // namespace
}  // namespace quillon
