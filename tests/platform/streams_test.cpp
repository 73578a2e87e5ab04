#include <filesystem>
#include <limits>

#include "tests/outside/child_process.h"
#include "tests/platform/files_fixture.h"

namespace quillon {
namespace {

using TextReaderTest = FilesTest;
using TextWriterTest = FilesTest;
using BinaryReaderTest = FilesTest;

std::vector<std::string> LinesOf(TextReader& reader) {
    std::vector<std::string> lines;
    while (!reader.AtEndOfStream())
        lines.push_back(reader.ReadLine());
    return lines;
}

TEST_F(TextReaderTest, KnowsBothLineEndsAndNone) {
    folder_.MakeFile("a.txt", "one\r\ntwo\n\r\nlone\rcr\r\nlast");
    EXPECT_EQ(LinesOf(*files_.OpenText("D:\\a.txt")),
              (Names{"one", "two", "", "lone\rcr", "last"}));
    folder_.MakeFile("b.txt", "last\r");
    EXPECT_EQ(LinesOf(*files_.OpenText("D:\\b.txt")), Names{"last\r"});
    folder_.MakeFile("c.txt", "x\n");
    EXPECT_EQ(LinesOf(*files_.OpenText("D:\\c.txt")), Names{"x"});
}

TEST_F(TextReaderTest, AnEmptyFileIsAtItsEnd) {
    folder_.MakeFile("a.txt");
    const std::unique_ptr<TextReader> reader = files_.OpenText("D:\\a.txt");
    EXPECT_TRUE(reader->AtEndOfStream());
    EXPECT_EQ(FailureOf([&] { reader->ReadLine(); }), "Input past end of file: D:\\a.txt");
}

TEST_F(TextReaderTest, ReadsAnsi) {
    folder_.MakeFile("a.txt", "caf\xE9 \x80\n");
    EXPECT_EQ(files_.OpenText("D:\\a.txt")->ReadLine(), "café €");
}

TEST_F(TextReaderTest, LinesMayCrossEveryBoundary) {
    for (const std::size_t length : {65534U, 65535U, 65536U, 65537U, 200'000U}) {
        const std::string line(length, 'x');
        folder_.MakeFile("a.txt", line + "\r\n" + line + "\r\nend");
        EXPECT_EQ(LinesOf(*files_.OpenText("D:\\a.txt")), (Names{line, line, "end"})) << length;
        folder_.MakeFile("b.txt", line + "\n");
        EXPECT_EQ(LinesOf(*files_.OpenText("D:\\b.txt")), Names{line}) << length;
    }
}

POSIX_TEST_F(TextReaderTest, RefusesALineThatNoTextHas) {
    const std::string longest((std::size_t{1} << 20U) - 1, 'x');
    folder_.MakeFile("a.pla", longest + "\r\nend");
    EXPECT_EQ(LinesOf(*files_.OpenText("D:\\a.pla")), (Names{longest, "end"}));
    folder_.MakeFile("b.pla", longest + "xx\r\nend");
    // A file of one line that is mostly a hole: what is read of it must not grow with it.
    folder_.MakeFile("c.pla");
    std::filesystem::resize_file(folder_ / "c.pla", std::uintmax_t{1} << 36U);
    for (const std::string path : {"D:\\b.pla", "D:\\c.pla"}) {
        EXPECT_EQ(FailureOf([&] { files_.OpenText(path)->ReadLine(); }),
                  path + " has a line of more than 1 MB, so it is not a text file");
    }
}

TEST_F(TextReaderTest, NeedsAFile) {
    folder_.MakeFolder("Folder");
    EXPECT_EQ(FailureOf([&] { files_.OpenText("D:\\x.txt"); }), "File not found: D:\\x.txt");
    EXPECT_EQ(FailureOf([&] { files_.OpenText("D:\\Folder"); }),
              "Permission denied: D:\\Folder (this is a folder and no file)");
    EXPECT_EQ(FailureOf([&] { files_.OpenText("E:\\x.txt"); }), "Path not found: E:\\x.txt");
}

TEST_F(TextWriterTest, WritesBytesAsTheyAre) {
    const std::unique_ptr<TextWriter> writer = files_.CreateText("D:\\a.txt");
    writer->Write("é");
    writer->WriteBytes("é\xE9");
    writer->Close();
    EXPECT_EQ(folder_.Content("a.txt"), "\xE9\xC3\xA9\xE9");
}

/// The question comes when all is on the disk, and the file of that name is still what it was.
TEST_F(TextWriterTest, ReplacesAFileOnlyIfItIsStillWanted) {
    folder_.MakeFile("a.txt", "old");
    for (const bool isWanted : {false, true}) {
        const std::unique_ptr<TextWriter> writer = files_.CreateText("D:\\a.txt");
        writer->WriteLine("new");
        const auto ask = [&] {
            EXPECT_EQ(folder_.Content("a.txt"), "old");
            return isWanted;
        };
        EXPECT_EQ(writer->CloseIf(ask), isWanted);
        EXPECT_EQ(folder_.Content("a.txt"), isWanted ? "new\r\n" : "old");
    }
    EXPECT_EQ(folder_.Count(), 1U) << "nothing is left behind";
}

TEST_F(TextWriterTest, WritesAnsiWithWindowsLineEnds) {
    const std::unique_ptr<TextWriter> writer = files_.CreateText("D:\\a.txt");
    writer->Write("caf");
    writer->WriteLine("é €");
    writer->WriteLine("Łódź");
    writer->WriteLine("");
    writer->Write("end");
    writer->Close();
    EXPECT_EQ(folder_.Content("a.txt"),
              "caf\xE9 \x80\r\n?\xF3"
              "d?\r\n\r\nend");
}

TEST_F(TextWriterTest, TheFileAppearsWholeOrNotAtAll) {
    folder_.MakeFile("List.m3u", "old");
    {
        const std::unique_ptr<TextWriter> writer = files_.CreateText("D:\\list.m3u");
        writer->Write(std::string(200'000, 'x'));
        EXPECT_EQ(folder_.Content("List.m3u"), "old");
    }
    EXPECT_EQ(folder_.Content("List.m3u"), "old");
    EXPECT_EQ(folder_.Count(), 1U);
    const std::unique_ptr<TextWriter> writer = files_.CreateText("D:\\list.m3u");
    writer->Write("new");
    writer->Close();
    writer->Close();
    EXPECT_EQ(folder_.Content("List.m3u"), "new");
    EXPECT_EQ(folder_.Count(), 1U);
}

TEST_F(TextWriterTest, WritesNothingAfterClose) {
    const std::unique_ptr<TextWriter> writer = files_.CreateText("D:\\a.txt");
    writer->Close();
    EXPECT_EQ(FailureOf([&] { writer->Write("x"); }), "Bad file name or number: D:\\a.txt");
    EXPECT_EQ(folder_.Content("a.txt"), "");
}

POSIX_TEST_F(TextWriterTest, AFullDiskKeepsTheOldFile) {
    folder_.MakeFile("a.txt", "old");
    EXPECT_EQ(outside::WithFilesUpTo(1000,
                                     [&] {
                                         return FailureOf([&] {
                                             const auto writer = files_.CreateText("D:\\a.txt");
                                             writer->Write(std::string(5000, 'x'));
                                             writer->Close();
                                         });
                                     }),
              "Disk full: D:\\a.txt");
    EXPECT_EQ(folder_.Content("a.txt"), "old");
    EXPECT_EQ(folder_.Count(), 1U);
}

TEST_F(TextWriterTest, NeedsAFolderAndAFileName) {
    folder_.MakeFolder("Folder");
    EXPECT_EQ(FailureOf([&] { files_.CreateText("D:\\no\\a.txt"); }),
              "Path not found: D:\\no\\a.txt");
    EXPECT_EQ(FailureOf([&] { files_.CreateText("D:\\Folder"); }),
              "Permission denied: D:\\Folder (this is a folder and no file)");
    EXPECT_EQ(FailureOf([&] { files_.CreateText("D:\\AC/DC: a.txt"); }),
              "Bad file name or number: D:\\AC/DC: a.txt");
    EXPECT_EQ(folder_.Count(), 1U);
}

TEST_F(BinaryReaderTest, OpensFilesOfTheFolderListedLastAsAnyOthers) {
    folder_.MakeFile("a/Song.mp3", "sound");
    folder_.MakeFile("a/b?.mp3", "no name for Windows");
    folder_.MakeFile("a/in/x.mp3", "deeper");
    EXPECT_EQ(files_.FilesIn("D:\\a").size(), 1U);
    for (const char* const path : {"D:\\a\\Song.mp3", "D:\\a\\SONG.MP3", "D:/a/Song.mp3"})
        EXPECT_EQ(files_.OpenBinary(path)->Size(), 5U) << path;
    EXPECT_EQ(files_.OpenBinary("D:\\a\\in\\x.mp3")->Size(), 6U);
    EXPECT_EQ(FailureOf([&] { files_.OpenBinary("D:\\a\\b?.mp3"); }),
              "Bad file name or number: D:\\a\\b?.mp3");
    EXPECT_EQ(FailureOf([&] { files_.OpenBinary("D:\\a\\none.mp3"); }),
              "File not found: D:\\a\\none.mp3");
}

TEST_F(BinaryReaderTest, ReadsFromAnyPosition) {
    folder_.MakeFile("a.bin", std::string("0123456789\0\xFF", 12));
    const std::unique_ptr<BinaryReader> reader = files_.OpenBinary("D:\\A.bin");
    using Bytes = std::vector<std::uint8_t>;
    EXPECT_EQ(reader->Size(), 12U);
    EXPECT_EQ(reader->Read(2), (Bytes{'0', '1'}));
    EXPECT_EQ(reader->Read(1), (Bytes{'2'}));
    reader->SetPosition(9);
    EXPECT_EQ(reader->Read(100), (Bytes{'9', 0, 0xFF}));
    EXPECT_EQ(reader->Read(1), Bytes{});
    reader->SetPosition(0);
    EXPECT_EQ(reader->Read(std::numeric_limits<std::size_t>::max()).size(), 12U);
    reader->SetPosition(1'000'000);
    EXPECT_EQ(reader->Read(1), Bytes{});
}

TEST_F(BinaryReaderTest, NeedsAFile) {
    EXPECT_EQ(FailureOf([&] { files_.OpenBinary("D:\\x"); }), "File not found: D:\\x");
    EXPECT_EQ(FailureOf([&] { files_.OpenBinary("D:\\"); }),
              "Permission denied: D:\\ (this is a folder and no file)");
}

}  // namespace
}  // namespace quillon
