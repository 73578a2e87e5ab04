#include <filesystem>
#include <gtest/gtest.h>

#include "tests/app/check_fixture.h"
#include "tests/outside/child_process.h"

namespace quillon {
namespace {

namespace fs = std::filesystem;

class CheckMode : public CheckFixture {
  protected:
    std::string Plan() const { return Section(Check().out, "A run would do"); }
};

TEST_F(CheckMode, TellsThePhasesAndTheBackups) {
    Write("shelf/Playlists/A.pla", std::string(2500, 'x'));
    fs::remove(Path("shelf/M3u"));
    EXPECT_EQ(Plan(),
              "  Reconcile library and database\n"
              "    Capture playlists\n"
              "    Remove duplicates\n"
              "    Add folder tracks to library\n"
              "    Add library tracks to download table\n"
              "    Add artist to download table\n"
              "    Update playlist references\n"
              "    Create new playlists\n"
              "    Verify album covers\n"
              "  Backups of\n"
              "    Size            Original\n"
              "    --------------  --------------\n"
              "    184 KB          H:\\jukebox.mdb\n"
              "    2.4 KB          H:\\Playlists\\\n"
              "    does not exist  H:\\M3u\\");
    // It renames files, so a new host folder has it switched off.
    Set("ID3Reconcile", "1");
    EXPECT_TRUE(Has(Plan(), "\n    Verify ID3\n"));
    Set("PlaylistsOnly", "1");
    EXPECT_TRUE(
        Plan().starts_with("  Reconcile library and database, playlists only\n"
                           "    Capture playlists\n"
                           "    Update playlist references\n"
                           "    Create new playlists\n"
                           "  Backups of\n"));
}

TEST_F(CheckMode, TellsTheBackupsOfTheOtherModes) {
    Choose("PlaToM3u");
    Set("PlayListPath2", "");
    EXPECT_EQ(Plan(),
              "  Pla to m3u playlists\n"
              "  Backups of\n"
              "    Size     Original\n"
              "    -------  --------\n"
              "    not set  (empty)");
    Set("PlaToM3u", "0");
    Choose("AlbumPicker");
    EXPECT_EQ(Plan(), "  Build album picker\n  Without backups");
}

TEST_F(CheckMode, NeedsOne) {
    Set("Reconcile", "0");
    EXPECT_EQ(Check().status, 2);
    EXPECT_EQ(Plan(), "  nothing");
    EXPECT_TRUE(Has(Problems(), "No mode is chosen, so a run does nothing. Set Reconcile=1"));
}

TEST_F(CheckMode, NeedsALibraryForTheModesThatDo) {
    Set("LibraryRoot", "");
    Choose("ID3Write");
    EXPECT_EQ(Check().status, 2);
    EXPECT_EQ(Problems(),
              "  - ID3Write needs LibraryRoot, which is empty, and is skipped. Set LibraryRoot "
              "to the folder of the music.");
    Set("AlbumPicker", "1");
    EXPECT_EQ(Check().status, 0) << "there is something else to do";
    EXPECT_TRUE(Has(Cautions(), "ID3Write needs LibraryRoot"));
    EXPECT_TRUE(Plan().starts_with("  Build album picker\n"));
}

TEST_F(CheckMode, NamesTheModesThatWillNotRun) {
    Set("AlbumPicker", "1");
    Set("MakeRemote", "1");
    EXPECT_EQ(Check().status, 0);
    EXPECT_EQ(Cautions(),
              "  - Several modes are switched on. A run does one thing: AlbumPicker; MakeRemote, "
              "Reconcile will not run. Switch off what is not wanted.");
}

TEST_F(CheckMode, TellsThatOneModeConvertsNothing) {
    Choose("M3uToPla");
    EXPECT_EQ(Check().status, 0);
    EXPECT_TRUE(Has(Cautions(), "M3uToPla is reserved"));
}

TEST_F(CheckMode, NamesTheFoldersThatGiveARemoteReferenceNoDrive) {
    Choose("MakeRemote");
    EXPECT_EQ(Cautions(), "");
    Set("LibraryRoot", "D:");
    EXPECT_TRUE(Has(Cautions(), "LibraryRoot=D: names no drive, so the paths that follow it stay"));
    EXPECT_EQ(Check().status, 0);
    for (const char* const folder : {"AlbumCoverFolder", "PlayListPath", "PlayListPath2"})
        Set(folder, "");
    EXPECT_TRUE(Has(Problems(), "MakeRemote would change nothing"));
}

TEST_F(CheckMode, SaysThatNoRunStartsWhereTheBackupsHaveNoRoom) {
    // Only looks large.
    Write("shelf/Playlists/Large.pla", "");
    const auto space = fs::space(Folder());
    fs::resize_file(Path("shelf/Playlists/Large.pla"), space.available + (std::uintmax_t{1} << 30));
    EXPECT_EQ(Check().status, 2);
    EXPECT_TRUE(Has(Problems(), "The backups need ")) << Problems();
    EXPECT_TRUE(Has(Problems(), "and no run starts without them. Free some space"));
}

TEST_F(CheckMode, NamesWhatCannotBeReadAndSoNotBackedUp) {
    fs::permissions(Folder(), fs::perms::others_all, fs::perm_options::add);
    for (const char* const name : {"shelf", "shelf/Playlists", "shelf/jukebox.mdb"})
        fs::permissions(Path(name), fs::perms::all);
    Write("shelf/host.log", "");
    fs::permissions(Path("shelf/host.log"), fs::perms::all);
    MakeFolder("shelf/Playlists/Sub");
    fs::permissions(Path("shelf/Playlists/Sub"), fs::perms::all);
    Write("shelf/Playlists/Sub/Closed.pla", "x");
    fs::permissions(Path("shelf/Playlists/Sub/Closed.pla"), fs::perms::none);
    const std::string problems = outside::AsOrdinaryUser([this] { return Problems(); });
    EXPECT_EQ(problems, "  - " + Path("shelf/Playlists/Sub/Closed.pla").string() +
                            " cannot be read by this account, so it cannot be backed up, and no "
                            "run starts without a backup. Give it the right to read there.");
}

TEST_F(CheckMode, SaysThatAWholeDriveCannotBeBackedUp) {
    MakeFolder("lists");
    std::string drives = Read("shelf/host.ini");
    drives.insert(drives.find("[Drives]\n") + 9, "P=" + Path("lists").string() + "\n");
    Write("shelf/host.ini", drives);
    for (const std::string written : {"P:\\", "P:", "P:/", "P:\\\\"}) {
        Set("PlayListPath", written);
        EXPECT_EQ(Check().status, 2) << written;
        EXPECT_TRUE(Has(Problems(),
                        "P:\\ is a whole drive, and the copy that a run makes first "
                        "cannot lie beside it, so no run starts. Name a folder on it"))
            << Problems();
    }
    Choose("AlbumPicker");
    EXPECT_EQ(Problems(), "") << "this mode makes no backups";
}

TEST_F(CheckMode, SeesAFolderAsARunDoesHoweverItIsWritten) {
    for (const std::string written : {"H:/Playlists/", "H:\\Playlists\\\\", "H:\\\\Playlists"}) {
        Set("PlayListPath", written);
        EXPECT_EQ(Check().status, 0) << written;
        EXPECT_TRUE(Has(Plan(), "H:\\Playlists\\\n")) << Plan();
    }
}

}  // namespace
}  // namespace quillon
