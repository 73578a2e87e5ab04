#include "app/views/window_module.h"

#include <cstdlib>
#include <fstream>
#include <gtest/gtest.h>

#include "app/views/window_view.h"
#include "tests/app/built_files.h"
#include "tests/outside/temporary_folder.h"

namespace quillon {
namespace {

namespace fs = std::filesystem;

class WindowModule : public ::testing::Test {
  protected:
    WindowModule() { setenv("QT_QPA_PLATFORM", "offscreen", 1); }

    static std::string WhyNot(const std::vector<fs::path>& places) {
        const WindowOffer offer = OpenWindow(places);
        EXPECT_EQ(offer.window, nullptr);
        return offer.whyNot;
    }

    outside::TemporaryFolder folder;
};

TEST_F(WindowModule, MayLieBesideTheProgramOrInTheInstallation) {
    const std::vector<fs::path> places = WindowModulePlaces();
    ASSERT_EQ(places.size(), 2U);
    const fs::path program = fs::read_symlink("/proc/self/exe").parent_path();
    EXPECT_EQ(places[0], program / "quillon-window.so");
    EXPECT_TRUE(
        places[1].lexically_normal().string().ends_with("/quillon/modules/quillon-window.so"));
    EXPECT_TRUE(places[1].is_absolute());
}

TEST_F(WindowModule, AnInstallationWithoutOneSaysHowToGetIt) {
    EXPECT_EQ(WhyNot({folder.Path() / "quillon-window.so", "nowhere/quillon-window.so"}),
              "there is no desktop window in this installation; install the package "
              "quillon-window, or build the program where Qt 6 is installed");
}

TEST_F(WindowModule, OneThatCannotBeLoadedIsNamedWithTheReason) {
    const fs::path file = folder.Path() / "quillon-window.so";
    std::ofstream(file) << "no library";
    const std::string reason = WhyNot({file});
    EXPECT_NE(reason.find("the desktop window cannot be loaded (" + file.string()),
              std::string::npos)
        << reason;
    EXPECT_NE(reason.find("quillon-window or what it needs"), std::string::npos) << reason;
}

TEST_F(WindowModule, ALibraryOfAnotherKindIsRefused) {
    EXPECT_EQ(WhyNot({built::NoWindow()}),
              built::NoWindow() + " is not this program's desktop window");
}

TEST_F(WindowModule, OneOfAnotherBuildIsRefused) {
    EXPECT_EQ(WhyNot({built::OtherWindow()}),
              built::OtherWindow() + " belongs to another build of this program");
}

}  // namespace
}  // namespace quillon
