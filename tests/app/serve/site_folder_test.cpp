#include "app/serve/site_folder.h"

#include <fstream>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include "tests/outside/temporary_folder.h"

namespace quillon {
namespace {

namespace fs = std::filesystem;

class SiteFolderTest : public testing::Test {
  protected:
    SiteFolderTest() {
        Write("HTML/Quillon/AlbumPicker/AlbumPicker0.asp", "index");
        Write("Quillon.ini", "secret");
    }

    fs::path Path(const std::string& name) const { return folder_.Path() / name; }

    void Write(const std::string& name, const std::string& content) const {
        fs::create_directories(Path(name).parent_path());
        std::ofstream(Path(name), std::ios::binary) << content;
    }

    void Link(const fs::path& target, const std::string& name) const {
        fs::create_symlink(target, Path(name));
    }

    /// The content, or "-" when nothing is served.
    std::string Content(const std::vector<std::string>& names) const {
        const auto file = site_.Open(names);
        return file ? file->Read() : "-";
    }

  private:
    outside::TemporaryFolder folder_;
    SiteFolder site_{folder_.Path() / "HTML"};
};

TEST_F(SiteFolderTest, ServesItsFiles) {
    EXPECT_EQ(Content({"Quillon", "AlbumPicker", "AlbumPicker0.asp"}), "index");
    EXPECT_EQ(Content({"Quillon", "AlbumPicker", "AlbumPicker1.asp"}), "-");
    EXPECT_EQ(Content({}), "-");
    Write("HTML/empty.txt", "");
    EXPECT_EQ(Content({"empty.txt"}), "");
}

TEST_F(SiteFolderTest, FindsNamesWhateverTheirLetterCaseExactOnesFirst) {
    EXPECT_EQ(Content({"quillon", "ALBUMPICKER", "albumpicker0.ASP"}), "index");
    Write("HTML/quillon/x.txt", "lower");
    Write("HTML/Quillon/x.txt", "as written");
    EXPECT_EQ(Content({"Quillon", "x.txt"}), "as written");
    EXPECT_EQ(Content({"quillon", "x.txt"}), "lower");
    Write("HTML/Große Überraschung.jpg", "umlaut");
    EXPECT_EQ(Content({"GROßE ÜBERRASCHUNG.JPG"}), "umlaut");
}

TEST_F(SiteFolderTest, SeesFilesThatComeAndGo) {
    EXPECT_EQ(Content({"new.txt"}), "-");
    Write("HTML/New.txt", "new");
    EXPECT_EQ(Content({"new.txt"}), "new");
    fs::remove(Path("HTML/New.txt"));
    EXPECT_EQ(Content({"new.txt"}), "-");
}

TEST_F(SiteFolderTest, ShowsNoFolders) {
    EXPECT_EQ(Content({"Quillon"}), "-");
    EXPECT_EQ(Content({"Quillon", "AlbumPicker"}), "-");
}

TEST_F(SiteFolderTest, FollowsLinksInsideTheFolderAlone) {
    Link("Quillon/AlbumPicker/AlbumPicker0.asp", "HTML/inside.asp");
    Link(Path("HTML/Quillon"), "HTML/inside");
    Link("../Quillon.ini", "HTML/outside.ini");
    Link(Path("Quillon.ini"), "HTML/absolute.ini");
    Link("..", "HTML/up");
    Link("/", "HTML/root");
    Link("loop", "HTML/loop");
    Link("nowhere", "HTML/dangling");
    EXPECT_EQ(Content({"inside.asp"}), "index");
    EXPECT_EQ(Content({"inside", "AlbumPicker", "AlbumPicker0.asp"}), "index");
    EXPECT_EQ(Content({"outside.ini"}), "-");
    EXPECT_EQ(Content({"absolute.ini"}), "-");
    EXPECT_EQ(Content({"up", "Quillon.ini"}), "-");
    EXPECT_EQ(Content({"up", "quillon.INI"}), "-");
    EXPECT_EQ(Content({"root", "etc", "passwd"}), "-");
    EXPECT_EQ(Content({"loop"}), "-");
    EXPECT_EQ(Content({"dangling"}), "-");
}

TEST_F(SiteFolderTest, AFolderWhoseNameBeginsAlikeIsOutside) {
    Write("HTML2/x.txt", "other");
    Link(Path("HTML2/x.txt"), "HTML/x.txt");
    EXPECT_EQ(Content({"x.txt"}), "-");
}

TEST_F(SiteFolderTest, TheFolderItselfMayBeALink) {
    fs::rename(Path("HTML"), Path("elsewhere"));
    Link("elsewhere", "HTML");
    EXPECT_EQ(Content({"Quillon", "AlbumPicker", "AlbumPicker0.asp"}), "index");
}

TEST_F(SiteFolderTest, OpensRegularFilesAlone) {
    // A pipe that nobody writes into would keep whoever opens it waiting.
    ASSERT_EQ(mkfifo(Path("HTML/pipe").c_str(), 0600), 0);
    Link("/dev/zero", "HTML/zero");
    EXPECT_EQ(Content({"pipe"}), "-");
    EXPECT_EQ(Content({"zero"}), "-");
}

TEST_F(SiteFolderTest, AMissingFolderHasNoFiles) {
    fs::remove_all(Path("HTML"));
    EXPECT_EQ(Content({"Quillon", "AlbumPicker", "AlbumPicker0.asp"}), "-");
}

}  // namespace
}  // namespace quillon
