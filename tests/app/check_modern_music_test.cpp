#include <gtest/gtest.h>

#include "run/modern_music.h"
#include "tests/app/check_fixture.h"

namespace quillon {
namespace {

class CheckModernMusicTest : public CheckFixture {};

TEST_F(CheckModernMusicTest, TellsWhichKeysAreOn) {
    Write("shelf/host.ini", "[Plugins]\nQuillon=1\n[Tags]\nRead=best\n[Playlists]\nLocal=yes\n");
    const std::string out = Check().out;
    for (const ModernKey& key : ModernKeys) {
        const bool isOn = key.key == "Read" || key.key == "Local";
        const std::string line = std::string(key.label) + std::string(17 - key.label.size(), ' ') +
                                 std::string(isOn ? key.whenOn : key.whenOff) + '\n';
        EXPECT_NE(out.find('\n' + line), std::string::npos) << line << out;
    }
}

TEST_F(CheckModernMusicTest, SaysThatWhatIsComparedShouldBeWritten) {
    const auto cautions = [this](const std::string& tags) {
        Write("shelf/host.ini", "[Plugins]\nQuillon=1\n[Tags]\n" + tags);
        return Cautions();
    };
    const std::string caution = "What ID3v2 says differently is found again in each run";
    EXPECT_TRUE(Has(cautions("Read=best\n"), caution));
    EXPECT_FALSE(Has(cautions("Read=best\nWrite=both\n"), caution));
    EXPECT_FALSE(Has(cautions("Write=both\n"), caution));
}

TEST_F(CheckModernMusicTest, FindsWordsThatAreNone) {
    Write("shelf/host.ini",
          "[Plugins]\nQuillon=1\n[Tags]\nRead=v2\nColour=red\n[Covers]\nScanLibrary=0\n"
          "FolderImages=perhaps\n");
    const std::string cautions = Cautions();
    for (const char* const told :
         {"Read in [Tags] of host.ini is \"v2\", which counts as v1. Write best or v1",
          "host.ini has Colour=red in [Tags], which nothing reads. If Read or Write is meant",
          "FolderImages in [Covers] of host.ini is \"perhaps\", which counts as 0. Write 1 or 0"})
        EXPECT_NE(cautions.find(told), std::string::npos) << cautions;
    EXPECT_EQ(cautions.find("ScanLibrary"), std::string::npos) << cautions;
}

}  // namespace
}  // namespace quillon
