#include "compat/ini_tool.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/portable/host_folder.h"
#include "platform/portable/path_resolver.h"
#include "platform/portable/portable_files.h"
#include "tests/outside/temporary_folder.h"
#include "tests/support/fakes.h"

namespace quillon {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class IniToolTest : public ::testing::Test {
  protected:
    void Load(const std::string& text) {
        world.files.AddFile(Path, text);
        tool.Load(Path);
    }

    std::string Saved() {
        tool.Save();
        return world.files.Content(Path);
    }

    const std::string Path = R"(C:\HomeSeer\some.ini)";
    fakes::FakeWorld world;
    IniTool tool{world.files, world.host};
};

TEST_F(IniToolTest, ReadsEntriesWithoutRegardToLetterCase) {
    Load("[NPFrame]\r\nLibraryRoot=D:\\Music\r\n");
    EXPECT_EQ(tool.Read("npframe", "LIBRARYROOT", "none"), R"(D:\Music)");
}

TEST_F(IniToolTest, GivesTheDefaultForAbsentKeysAndEmptyValues) {
    Load("[a]\nx=\n");
    EXPECT_EQ(tool.Read("a", "x", "default"), "default");
    EXPECT_EQ(tool.Read("a", "y", "default"), "default");
    EXPECT_EQ(tool.Read("b", "x", "default"), "default");
}

TEST_F(IniToolTest, SkipsCommentsAndBlankLines) {
    Load("; first\n\n   \n  ;x=1\n[a]\n;x=2\nx=3");
    EXPECT_EQ(tool.Read("a", "x", ""), "3");
    EXPECT_EQ(tool.Read("", ";x", ""), "");
}

TEST_F(IniToolTest, TrimsTheLineButNeitherKeyNorValue) {
    Load("[a]\n  A = b  \n");
    EXPECT_EQ(tool.Read("a", "A ", ""), " b");
    EXPECT_EQ(tool.Read("a", "A", "none"), "none");
}

TEST_F(IniToolTest, SplitsAnEntryAtItsFirstEqualSign) {
    Load("[a]\nx=1=2\n=3\n");
    EXPECT_EQ(tool.Read("a", "x", ""), "1=2");
    EXPECT_EQ(tool.Read("a", "", ""), "3");
}

TEST_F(IniToolTest, KeepsTheFirstOccurrenceOfAKeyInASection) {
    Load("[a]\nx=1\nX=2\n[b]\nx=3\n");
    EXPECT_EQ(tool.Read("a", "x", ""), "1");
    EXPECT_EQ(tool.Read("b", "x", ""), "3");
}

TEST_F(IniToolTest, KeepsEntriesBeforeAnySectionUnderTheEmptyOne) {
    Load("x=1\n[a]\n");
    EXPECT_EQ(tool.Read("", "x", ""), "1");
}

TEST_F(IniToolTest, RefusesASectionThatStandsTwice) {
    world.files.AddFile(Path, "[a]\nx=1\n[A]\ny=2\n");
    try {
        tool.Load(Path);
        FAIL() << "loaded";
    } catch (const Failure& failure) {
        EXPECT_EQ(failure.Number(), FailureNumber::DuplicateKey);
    }
    EXPECT_EQ(tool.Read("a", "x", ""), "1");
    EXPECT_EQ(tool.Read("a", "y", "not reached"), "not reached");
}

TEST_F(IniToolTest, ForgetsTheFormerFileWhenItLoads) {
    Load("[a]\nx=1\n");
    tool.Load(R"(C:\HomeSeer\missing.ini)");
    EXPECT_EQ(tool.Read("a", "x", "gone"), "gone");
}

TEST_F(IniToolTest, TellsOfAMissingFileOnlyWhenAskedTo) {
    tool.Load("missing.ini");
    EXPECT_THAT(world.host.log, IsEmpty());
    tool.Load("missing.ini", IniTool::Diagnostics::On);
    EXPECT_THAT(world.host.log,
                ElementsAre("IniTool: Ini file missing.ini not found in homeseer directory"));
}

TEST_F(IniToolTest, TellsOfLinesWithoutEqualSignOnlyWhenAskedTo) {
    Load("[a]\n  rubbish  \nx=1\n");
    EXPECT_THAT(world.host.log, IsEmpty());
    tool.Load(Path, IniTool::Diagnostics::On);
    EXPECT_THAT(world.host.log, ElementsAre("IniTool:  Equal sign not found on line rubbish"));
    EXPECT_EQ(tool.Read("a", "x", ""), "1");
}

TEST_F(IniToolTest, ListsSectionsAsWrittenInTheirOrder) {
    Load("[Zebra]\nx=1\n[apple]\n[]\n");
    EXPECT_THAT(tool.Headers(), ElementsAre("Zebra", "apple", ""));
}

TEST_F(IniToolTest, TakesAnEntryForASectionWhenItsValueIsItsWholeKey) {
    Load("[a]\nx=a~X\n");
    EXPECT_THAT(tool.Headers(), ElementsAre("a", "a~X"));
}

TEST_F(IniToolTest, RemovesOneEntry) {
    Load("[a]\nx=1\ny=2\nz=3\n");
    tool.Remove("A", "Y");
    tool.Remove("A", "Y");
    tool.Remove("nowhere", "y");
    EXPECT_EQ(tool.Read("a", "x", ""), "1");
    EXPECT_EQ(tool.Read("a", "y", "gone"), "gone");
    EXPECT_EQ(tool.Read("a", "z", ""), "3");
}

TEST_F(IniToolTest, ClearsEverything) {
    Load("[a]\nx=1\n");
    tool.Clear();
    EXPECT_THAT(tool.Headers(), IsEmpty());
    EXPECT_EQ(tool.Read("a", "x", "gone"), "gone");
}

TEST_F(IniToolTest, SavesUpperCaseNamesSortedAndNothingElse) {
    Load("; a comment\n[b]\nzoo=1\n\nant=Two\n[A]\nx=3\n[empty]\n");
    EXPECT_EQ(Saved(), "[A]\r\nX=3\r\n[B]\r\nANT=Two\r\nZOO=1\r\n");
}

TEST_F(IniToolTest, ReadsUnchangedWhatItSaved) {
    Load("top=0\n[b]\nzoo=1\nA = b\n[A]\nx= 3=4\n");
    Saved();
    tool.Load(Path);
    EXPECT_EQ(tool.Read("", "top", ""), "0");
    EXPECT_EQ(tool.Read("b", "zoo", ""), "1");
    EXPECT_EQ(tool.Read("b", "a ", ""), " b");
    EXPECT_EQ(tool.Read("a", "x", ""), " 3=4");
}

TEST_F(IniToolTest, SavesEntriesWithoutSectionBeforeAnyHeader) {
    Load("top=0\n[b]\nx=1\n");
    EXPECT_EQ(Saved(), "TOP=0\r\n[B]\r\nX=1\r\n");
}

TEST_F(IniToolTest, SavesAnEmptyFileWhenNothingIsLeft) {
    Load("[a]\nx=1\n");
    tool.Remove("a", "x");
    EXPECT_EQ(Saved(), "");
}

TEST_F(IniToolTest, CutsASectionNameAtItsTildeWhenItSaves) {
    Load("[a~b]\nx=1\n");
    EXPECT_EQ(Saved(), "[A]\r\nB=a~b\r\nB~X=1\r\n");
}

TEST_F(IniToolTest, LeavesOutAnEntryWhoseValueIsItsWholeKey) {
    Load("[a]\nx=A~X\ny=a~y\n");
    EXPECT_EQ(Saved(), "[A]\r\nY=a~y\r\n");
}

TEST_F(IniToolTest, RefusesToSaveWhatIsTooLongBeforeTheFileIsTouched) {
    const std::string longValue(256, 'v');
    for (const std::string& text :
         {"[" + std::string(101, 's') + "]\nk=v\n", "[s]\n" + std::string(66, 'k') + "=v\n",
          "[s]\nk=" + longValue + "\n"}) {
        Load(text);
        EXPECT_THROW(tool.Save(), Failure);
        EXPECT_EQ(world.files.Content(Path), text);
    }
}

TEST_F(IniToolTest, SavesWhatJustFits) {
    Load("[" + std::string(100, 'S') + "]\n" + std::string(65, 'K') + "=" + std::string(255, 'v') +
         "\n");
    EXPECT_EQ(Saved().size(), 102U + 2 + 65 + 1 + 255 + 2);
}

TEST_F(IniToolTest, DumpsEveryKeyAndItem) {
    Load("[Ab]\nx=1\n");
    const std::unique_ptr<TextWriter> out = world.files.CreateText("dump");
    tool.DumpHashTable(*out);
    out->Close();
    EXPECT_EQ(world.files.Content("dump"), "<PRE>AB = Ab\r\nAB~X = 1\r\n</PRE>");
}

TEST(IniToolOnDisk, KeepsItsFileInTheCodePageOfTheHost) {
    const outside::TemporaryFolder folder;
    folder.MakeFile("some.ini", "[Place]\r\nname=Caf\xE9\r\nother=x\r\n");
    const fakes::FakeClock clock;
    HostFolder host(folder.Path(), clock);
    PathResolver resolver(host.Drives());
    PortableFiles files(resolver, [](LogKind, const std::string&) {});
    IniTool tool(files, host);
    tool.Load(host.GetAppPath() + R"(\SOME.INI)");
    EXPECT_EQ(tool.Read("place", "Name", ""), "Caf\u00e9");
    tool.Remove("place", "other");
    tool.Save();
    EXPECT_EQ(folder.Content("some.ini"), "[PLACE]\r\nNAME=Caf\xE9\r\n");
}

}  // namespace
}  // namespace quillon
