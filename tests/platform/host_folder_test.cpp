#include "platform/portable/host_folder.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include "platform/portable/path_resolver.h"
#include "tests/outside/child_process.h"
#include "tests/outside/temporary_folder.h"
#include "tests/platform/failure_of.h"

namespace quillon {
namespace {

class FixedClock : public Clock {
  public:
    DateTime Now() const override { return MakeDateTime(2026, 11, 21, 7, 13, 5); }
};

class HostFolderTest : public testing::Test {
  protected:
    HostFolder Host() { return {folder_.Path(), clock_}; }

    outside::TemporaryFolder folder_;
    FixedClock clock_;
};

TEST_F(HostFolderTest, ReadsSettingsOfAnyFileInTheFolder) {
    folder_.MakeFile("quillon.INI", "[NPFrame]\r\nLibraryRoot=D:\\Music\r\nEmpty=\r\n");
    HostFolder host = Host();
    EXPECT_EQ(host.GetINISetting("NPFrame", "LibraryRoot", "x", "Quillon.ini"), "D:\\Music");
    EXPECT_EQ(host.GetINISetting("npframe", "libraryroot", "x", "QUILLON.ini"), "D:\\Music");
    EXPECT_EQ(host.GetINISetting("NPFrame", "Empty", "x", "Quillon.ini"), "");
    EXPECT_EQ(host.GetINISetting("NPFrame", "Missing", "100", "Quillon.ini"), "100");
    EXPECT_EQ(host.GetINISetting("Missing", "LibraryRoot", "x", "Quillon.ini"), "x");
    EXPECT_EQ(host.GetINISetting("NPFrame", "LibraryRoot", "x", "Missing.ini"), "x");
}

TEST_F(HostFolderTest, SeesAChangedFile) {
    HostFolder host = Host();
    EXPECT_EQ(host.GetINISetting("a", "x", "none", "q.ini"), "none");
    folder_.MakeFile("q.ini", "[a]\nx=1\n");
    EXPECT_EQ(host.GetINISetting("a", "x", "none", "q.ini"), "1");
    folder_.MakeFile("q.ini", "[a]\nx=22\n");
    EXPECT_EQ(host.GetINISetting("a", "x", "none", "q.ini"), "22");
    std::filesystem::remove(folder_ / "q.ini");
    EXPECT_EQ(host.GetINISetting("a", "x", "none", "q.ini"), "none");
}

TEST_F(HostFolderTest, ReadsNoFileElsewhere) {
    HostFolder host = Host();
    for (const char* const file : {"../host.ini", "..\\host.ini", "", "/etc/passwd", "a:b.ini"})
        EXPECT_EQ(FailureOf([&] { host.GetINISetting("a", "x", "", file); }),
                  "Bad file name or number" + (*file == '\0' ? "" : ": " + std::string(file)));
}

TEST_F(HostFolderTest, SaysWhenSettingsMayNotBeRead) {
    folder_.MakeFile("Quillon.ini", "[a]\nx=1\n");
    chmod(folder_.Path().c_str(), 0755);
    chmod((folder_ / "Quillon.ini").c_str(), 0);
    HostFolder host = Host();
    EXPECT_EQ(outside::AsOrdinaryUser([&] {
                  return FailureOf([&] { host.GetINISetting("a", "x", "", "Quillon.ini"); });
              }),
              "Permission denied: " + (folder_ / "Quillon.ini").string());
    folder_.MakeFolder("Folder.ini");
    EXPECT_EQ(FailureOf([&] { host.GetINISetting("a", "x", "", "Folder.ini"); }),
              "Permission denied: " + (folder_ / "Folder.ini").string() +
                  " (this is a folder and no file)");
}

TEST_F(HostFolderTest, ListsThePlugInsThatAreSwitchedOn) {
    EXPECT_TRUE(Host().GetPlugins().empty());
    folder_.MakeFile("host.ini", "[Plugins]\nQuillon=1\nA=0\nB=yes\nC=\nD=no\nE=TRUE\nF=-1\n");
    EXPECT_EQ(Host().GetPlugins(), (std::vector<std::string>{"Quillon", "B", "E", "F"}));
}

TEST_F(HostFolderTest, MapsDrives) {
    folder_.MakeFile("host.ini", "[Drives]\nD=music\n\\\\nas\\share=/mnt/nas\n");
    const HostFolder host = Host();
    EXPECT_EQ(host.Drives().LocalFolder("D:"), (folder_ / "music").string());
    EXPECT_EQ(host.Drives().LocalFolder("\\\\NAS\\share"), "/mnt/nas");
    EXPECT_EQ(host.Drives().LocalFolder("E:"), std::nullopt);
}

TEST_F(HostFolderTest, RefusesLinesThatAreNoDrive) {
    folder_.MakeFile("host.ini", "[Drives]\nMusic=/srv\n");
    EXPECT_EQ(FailureOf([&] { Host(); }),
              "Invalid procedure call or argument: drive Music=/srv in " +
                  (folder_ / "host.ini").string());
}

TEST_F(HostFolderTest, SaysWhatToDoAboutADriveWithoutFolder) {
    folder_.MakeFile("host.ini", "[Drives]\nH=.\nD=\n");
    EXPECT_EQ(FailureOf([&] { Host(); }),
              "The line \"D=\" below [Drives] in " + (folder_ / "host.ini").string() +
                  " names no folder. Write the folder that D stands for behind it, or remove the "
                  "line");
}

TEST_F(HostFolderTest, AppPathIsTheFolderInWindowsTerms) {
    std::string wanted = "Z:" + folder_.Path().string();
    std::replace(wanted.begin(), wanted.end(), '/', '\\');
    EXPECT_EQ(Host().GetAppPath(), wanted);
    folder_.MakeFile("host.ini", "[Drives]\nC=..\n");
    EXPECT_EQ(Host().GetAppPath(), "C:\\" + folder_.Path().filename().string());
    folder_.MakeFile("host.ini", "[Drives]\nC=.\n");
    EXPECT_EQ(Host().GetAppPath(), "C:");
    folder_.MakeFile("host.ini", "[Drives]\nZ=/nowhere\n");
    EXPECT_EQ(Host().GetAppPath(), "Y:");
    HostFolder host = Host();
    PathResolver resolver(host.Drives());
    EXPECT_EQ(resolver.Local(host.GetAppPath() + "\\Data"), (folder_ / "Data").string());
}

TEST_F(HostFolderTest, ReachedByALinkMeansWhatItMeansWhereItIs) {
    folder_.MakeFile("real/shelf/host.ini", "[Drives]\nD=../disk\nE=sub\n");
    folder_.MakeFolder("real/disk");
    folder_.MakeFolder("links");
    std::filesystem::create_directory_symlink("../real/shelf", folder_ / "links/shelf");
    HostFolder host(folder_ / "links/shelf", clock_);
    const std::string real = std::filesystem::canonical(folder_ / "real").string();
    EXPECT_EQ(host.Drives().LocalFolder("D:"), real + "/disk");
    EXPECT_EQ(host.Drives().LocalFolder("E:"), real + "/shelf/sub");
    PathResolver resolver(host.Drives());
    EXPECT_TRUE(std::filesystem::equivalent(resolver.Local(host.GetAppPath() + "\\"),
                                            folder_ / "real/shelf"));
    host.WriteLog("Quillon", "x");
    EXPECT_TRUE(folder_.Exists("real/shelf/host.log"));
}

TEST_F(HostFolderTest, AppPathOfAFolderThatWindowsCannotName) {
    folder_.MakeFolder("a:b");
    HostFolder host(folder_ / "a:b/", clock_);
    EXPECT_EQ(host.GetAppPath(), "Y:");
    EXPECT_EQ(host.Folder(), folder_ / "a:b");
}

TEST_F(HostFolderTest, NeedsTheFolder) {
    folder_.MakeFile("file");
    EXPECT_EQ(FailureOf([&] { HostFolder(folder_ / "none", clock_); }),
              "Path not found: host folder " + (folder_ / "none").string());
    EXPECT_EQ(FailureOf([&] { HostFolder(folder_ / "file", clock_); }),
              "Path not found: host folder " + (folder_ / "file").string());
}

TEST_F(HostFolderTest, LogHasOneLineARecord) {
    HostFolder host = Host();
    host.WriteLog("Quillon", "Update Database Error: Line 0 Object required");
    host.WriteLog("Qu\till\non", "a\r\nb\nc\rd\te \x1B[1m caf\xE9 日");
    EXPECT_EQ(folder_.Content("host.log"),
              "2026-11-21 07:13:05\tQuillon\tUpdate Database Error: Line 0 Object required\n"
              "2026-11-21 07:13:05\tQu ill on\ta b c d\te  [1m café 日\n");
}

TEST_F(HostFolderTest, LogIsAppendedToAndMayBeMovedAway) {
    folder_.MakeFile("host.log", "earlier\n");
    HostFolder host = Host();
    host.WriteLog("Quillon", "one");
    std::filesystem::rename(folder_ / "host.log", folder_ / "old.log");
    host.WriteLog("Quillon", "two");
    EXPECT_EQ(folder_.Content("old.log"), "earlier\n2026-11-21 07:13:05\tQuillon\tone\n");
    EXPECT_EQ(folder_.Content("host.log"), "2026-11-21 07:13:05\tQuillon\ttwo\n");
}

TEST_F(HostFolderTest, SaysWhenTheLogCannotBeWritten) {
    folder_.MakeFolder("host.log");
    HostFolder host = Host();
    EXPECT_EQ(FailureOf([&] { host.WriteLog("Quillon", "x"); }),
              "Permission denied: " + (folder_ / "host.log").string());
}

TEST_F(HostFolderTest, ARecordThatWasCutShortDoesNotSpoilTheNextOne) {
    const std::string start = "2026-11-21 07:13:05\tQuillon\t";
    const std::string first = start + "one\n";
    HostFolder host = Host();
    const auto write = [&host](const char* message) {
        return FailureOf([&] { host.WriteLog("Quillon", message); });
    };
    EXPECT_EQ(outside::WithFilesUpTo(first.size() + 10,
                                     [&] {
                                         std::string told = write("one") + '|';
                                         told += write("two") + '|';
                                         outside::LetFilesGrow();
                                         return told + write("three");
                                     }),
              "|Disk full: " + (folder_ / "host.log").string() + "|");
    EXPECT_EQ(folder_.Content("host.log"), first + start.substr(0, 10) + "\n" + start + "three\n");
}

TEST_F(HostFolderTest, ReadsNoSettingsFileThatIsNone) {
    folder_.MakeFile("some.ini", "[A]\nb=" + std::string(2'000'000, 'x'));
    ASSERT_EQ(mkfifo((folder_ / "pipe.ini").c_str(), 0666), 0);
    HostFolder host = Host();
    EXPECT_EQ(FailureOf([&] { host.GetINISetting("A", "b", "", "some.ini"); }),
              (folder_ / "some.ini").string() +
                  " is larger than 1 MB, so it is not a settings file; correct or replace it");
    EXPECT_EQ(
        FailureOf([&] { host.GetINISetting("A", "b", "", "pipe.ini"); }),
        "Permission denied: " + (folder_ / "pipe.ini").string() + " (this is a pipe and no file)");
}

TEST_F(HostFolderTest, HasSettingsOfItsOwn) {
    folder_.MakeFile("host.ini", "[Download]\nHost = music.example \n");
    HostFolder host = Host();
    EXPECT_EQ(host.GetINISetting("Download", "Host", "", HostSettingsFile), "music.example");
    EXPECT_EQ(host.GetINISetting("Download", "Port", "80", HostSettingsFile), "80");
}

}  // namespace
}  // namespace quillon
