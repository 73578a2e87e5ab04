#include <filesystem>
#include <gtest/gtest.h>

#include "tests/app/check_fixture.h"
#include "tests/support/sound_file.h"

namespace quillon {
namespace {

namespace fs = std::filesystem;

class CheckTagRenames : public CheckFixture {
  protected:
    CheckTagRenames() {
        Set("ID3Reconcile", "1");
        fs::create_directories(Path("Music/Alder/First Light"));
        fs::create_directories(Path("Music/Podcasts/Day"));
    }
    void AddSong(const std::string& name, const std::string& title, const std::string& more = "") {
        support::RawTag tag;
        tag.song = title;
        Write("Music/" + name, more + support::SoundFile(tag));
    }
    /// Puts a value of the host's settings in the place of what init may have written.
    void SetHost(const std::string& section, const std::string& key, const std::string& value) {
        std::string settings = "\n" + Read("shelf/host.ini");
        for (std::size_t at = 0; (at = settings.find("\n" + key + "=")) != std::string::npos;)
            settings.erase(at, settings.find('\n', at + 1) - at);
        const std::string heading = "[" + section + "]\n";
        const std::string line = key + "=" + value + "\n";
        const std::size_t at = settings.find(heading);
        if (at == std::string::npos) {
            settings += heading + line;
        } else {
            settings.insert(at + heading.size(), line);
        }
        Write("shelf/host.ini", settings);
    }
    std::string Finding() const {
        const std::string all = Cautions();
        const std::size_t start = all.find("ID3Reconcile is on");
        return start == std::string::npos ? "" : all.substr(start, all.find('\n', start) - start);
    }
};

TEST_F(CheckTagRenames, SaysHowManyFilesTheNextRunRenamesAndRemoves) {
    AddSong("Alder/First Light/01 - Dawn.mp3", "Dawn");
    AddSong("Alder/First Light/[x].mp3", "");
    AddSong("Alder/First Light/Alder - Dusk.mp3", "Dusk");
    AddSong("Alder/First Light/y.mp3", "Dusk");
    AddSong("Alder/First Light/Alder - A.mp3", "B");
    AddSong("Alder/First Light/Alder - B.mp3", "A");
    EXPECT_EQ(Finding(),
              "ID3Reconcile is on: the next run would rename 4 files after their tags and move 1 "
              "duplicate to Removed. If that is not meant, set ID3Reconcile=0.");
    const ProgramResult run = CallProgram({"run", "--host", Path("shelf"), "--view", "plain"});
    EXPECT_EQ(run.status, 0) << run.out << run.err;
    EXPECT_EQ(Finding(), "");
}

TEST_F(CheckTagRenames, ChangesNothing) {
    AddSong("Alder/First Light/01 - Dawn.mp3", "Dawn");
    AddSong("Alder/First Light/02 - Bad.mp3", "???");
    EXPECT_EQ(Finding(),
              "ID3Reconcile is on: the next run would rename 1 file after its tag. If that is not "
              "meant, set ID3Reconcile=0.");
    EXPECT_TRUE(fs::exists(Path("Music/Alder/First Light/01 - Dawn.mp3")));
    EXPECT_FALSE(fs::exists(Path("shelf/host.log")));
}

TEST_F(CheckTagRenames, SaysWhenDuplicatesAreDeletedForGood) {
    AddSong("Alder/First Light/Alder - Dusk.mp3", "Dusk");
    AddSong("Alder/First Light/y.mp3", "Dusk");
    SetHost("Removed", "Keep", "0");
    EXPECT_TRUE(Has(Finding(), "would delete 1 duplicate for good."));
}

TEST_F(CheckTagRenames, CountsDuplicatesOfTheSameSoundOnlyWhereOnlyThoseGo) {
    AddSong("Alder/First Light/Alder - Dusk.mp3", "Dusk");
    AddSong("Alder/First Light/y.mp3", "Dusk", "other");
    AddSong("Alder/First Light/z.mp3", "Dusk");
    SetHost("Removed", "OnlyIdentical", "0");
    EXPECT_TRUE(Has(Finding(), "move 2 duplicates to Removed"));
    SetHost("Removed", "OnlyIdentical", "1");
    EXPECT_TRUE(Has(Finding(), "move 1 duplicate to Removed"));
}

TEST_F(CheckTagRenames, SaysWhenTheBrakeWouldKeepTheDuplicates) {
    AddSong("Alder/First Light/Alder - Dusk.mp3", "Dusk");
    AddSong("Alder/First Light/y.mp3", "Dusk");
    SetHost("Safety", "MaxRemovedFiles", "0");
    EXPECT_TRUE(Has(Finding(),
                    "More duplicates than MaxRemovedFiles=0 are only removed with "
                    "--allow-removals; otherwise none is."));
}

TEST_F(CheckTagRenames, LeavesOutWhatARunLeavesOut) {
    AddSong("Podcasts/Day/1.mp3", "x");
    Set("ExcludeList", "podcasts");
    EXPECT_EQ(Finding(), "");
    Set("ExcludeList", "");
    EXPECT_TRUE(Has(Finding(), "rename 1 file"));
    Set("PlaylistsOnly", "1");
    EXPECT_EQ(Finding(), "");
    Set("PlaylistsOnly", "0");
    Set("ID3Reconcile", "0");
    EXPECT_EQ(Finding(), "");
    Set("ID3Reconcile", "1");
    Choose("AlbumPicker");
    EXPECT_EQ(Finding(), "");
}

}  // namespace
}  // namespace quillon
