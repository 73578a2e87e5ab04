#include <filesystem>
#include <fstream>
#include <gmock/gmock.h>

#include "jukebox/jukebox_database.h"
#include "picker/album_picker.h"
#include "picker/placeholder.h"
#include "platform/portable/jet_database.h"
#include "platform/portable/path_resolver.h"
#include "platform/portable/portable_files.h"
#include "tests/outside/posix_test.h"
#include "tests/outside/temporary_folder.h"
#include "tests/support/fakes.h"
#include "tests/support/real_library.h"

namespace quillon {
namespace {

namespace fs = std::filesystem;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::UnorderedElementsAre;

/// A run over real files: drive D: is a temporary folder, the host lies in D:\host.
class RealPickerTest : public ::testing::Test {
  protected:
    RealPickerTest()
        : resolver_(Drives(Folder())),
          files_(resolver_, [this](LogKind, const std::string& note) { host.log.push_back(note); }),
          databases_(resolver_),
          run(host, files_, clock_, window_) {
        fs::create_directories(Html());
        fs::create_directories(Folder() / "Covers");
        CreateJukeboxDatabase(Folder() / "cdj.mdb");
        host.appPath = R"(D:\host)";
        run.settings.Nirvis_CDJ_DB = R"(D:\cdj.mdb)";
        run.settings.AlbumCoverFolder = R"(D:\Covers\)";
        run.settings.coverPath = "/Quillon/albumcovers/";
        run.settings.PickerMinimum = 1;
        run.databases = &databases_;
        run.connection =
            databases_.Open("Provider=Microsoft.Jet.OLEDB.4.0;Data Source=D:\\cdj.mdb");
    }

    static DriveTable Drives(const fs::path& folder) {
        DriveTable drives(folder);
        drives.Map("D", folder);
        return drives;
    }

    const fs::path& Folder() const { return folder_.Path(); }
    fs::path Html() const { return Folder() / "host/HTML/Quillon"; }
    fs::path Pages() const { return Html() / "AlbumPicker"; }

    void AddAlbum(const std::string& image) {
        run.connection->Execute(
            "INSERT INTO Albums (CDJID, Artist, Title, Tracks, ImageFile) "
            "VALUES ('1', 'Alder', 'One', 1, 'D:\\Covers\\" +
            image + "')");
        run.connection->Execute("INSERT INTO Tracks (CDJID, Track, Title) VALUES ('1', 1, 'Song')");
    }

    void Write(const fs::path& file, const std::string& content) {
        fs::create_directories(file.parent_path());
        std::ofstream(file, std::ios::binary) << content;
    }

    static std::vector<std::string> Names(const fs::path& folder) {
        std::vector<std::string> names;
        for (const fs::directory_entry& entry : fs::directory_iterator(folder))
            names.push_back(entry.path().filename().string());
        return names;
    }

    fakes::Calls calls_;
    fakes::FakeHost host{calls_};

  private:
    outside::TemporaryFolder folder_;
    fakes::FakeClock clock_;
    fakes::FakeWindow window_{calls_};
    PathResolver resolver_;
    PortableFiles files_;
    JetDatabaseProvider databases_;

  protected:
    quillon::Run run;
};

TEST_F(RealPickerTest, WritesPagesCoversAndThePlaceholderByteForByte) {
    AddAlbum("gone.jpg");
    BuildAlbumPicker(run);
    EXPECT_THAT(host.log, IsEmpty());
    EXPECT_THAT(Names(Html()), UnorderedElementsAre("AlbumPicker", "albumcovers"));
    EXPECT_THAT(Names(Pages()),
                UnorderedElementsAre("AlbumPicker0.asp", "AlbumPicker1.asp", "AlbumPicker.css"));
    const std::vector<std::uint8_t> drawn = PlaceholderImage();
    EXPECT_EQ(outside::ContentOf(Html() / "albumcovers/notfnd.jpg"),
              std::string(drawn.begin(), drawn.end()));
    EXPECT_EQ(outside::ContentOf(Pages() / "AlbumPicker0.asp").substr(0, 48),
              "<!--#include virtual=\"/includes/style.asp\"-->\r\n<");
}

TEST_F(RealPickerTest, CopiesNothingAgainThatHasNotChanged) {
    AddAlbum("one.jpg");
    Write(Folder() / "Covers/one.jpg", "image");
    BuildAlbumPicker(run);
    const fs::path copy = Html() / "albumcovers/one.jpg";
    EXPECT_EQ(outside::ContentOf(copy), "image");
    Write(copy, "other");
    fs::last_write_time(copy, fs::last_write_time(Folder() / "Covers/one.jpg"));
    BuildAlbumPicker(run);
    EXPECT_EQ(outside::ContentOf(copy), "other");
    Write(Folder() / "Covers/one.jpg", "larger image");
    BuildAlbumPicker(run);
    EXPECT_EQ(outside::ContentOf(copy), "larger image");
}

TEST_F(RealPickerTest, WritesNothingOutsideTheWebFolder) {
    Write(Folder() / "host/AlbumPicker/mine.txt", "mine");
    for (const char* const coverPath : {"/../x/", "/", "", "/../../AlbumPicker/"}) {
        run.settings.coverPath = coverPath;
        BuildAlbumPicker(run);
    }
    EXPECT_THAT(Names(Folder()), UnorderedElementsAre("host", "Covers", "cdj.mdb", "cdj.ldb"));
    EXPECT_THAT(Names(Folder() / "host"), UnorderedElementsAre("HTML", "AlbumPicker"));
    EXPECT_THAT(Names(Folder() / "host/AlbumPicker"), ElementsAre("mine.txt"));
    EXPECT_EQ(run.counts.errors, 2U);
}

POSIX_TEST_F(RealPickerTest, KeepsTheOldPagesInAReadOnlyFolder) {
    Write(Pages() / "AlbumPicker0.asp", "old");
    EXPECT_TRUE(support::RunsWellUnprivileged(Folder(), [&] {
        fs::permissions(Html(), fs::perms::owner_read | fs::perms::owner_exec);
        BuildAlbumPicker(run);
        EXPECT_THAT(host.log,
                    ElementsAre("Quillon: BuildAlbumPicker - Album Picker File may be open Line 2 "
                                R"(Permission denied: D:\host\HTML\Quillon\AlbumPicker.new)"));
        fs::permissions(Html(), fs::perms::owner_all);
    }));
    EXPECT_EQ(outside::ContentOf(Pages() / "AlbumPicker0.asp"), "old");
}

POSIX_TEST_F(RealPickerTest, PublishesBesideAnOldPageThatIsWriteProtectedAndSaysSo) {
    Write(Pages() / "AlbumPicker9.asp", "old");
    EXPECT_TRUE(support::RunsWellUnprivileged(Folder(), [&] {
        fs::permissions(Pages() / "AlbumPicker9.asp", fs::perms::owner_read);
        BuildAlbumPicker(run);
        EXPECT_THAT(host.log,
                    ElementsAre("Quillon: BuildAlbumPicker - Album Picker File may be open Line 2 "
                                R"(Permission denied: D:\host\HTML\Quillon\AlbumPicker.old)"));
    }));
    EXPECT_TRUE(fs::exists(Pages() / "AlbumPicker0.asp"));
    EXPECT_FALSE(fs::exists(Pages() / "AlbumPicker9.asp"));
}

POSIX_TEST_F(RealPickerTest, ShowsThePlaceholderForACoverThatCannotBeRead) {
    AddAlbum("locked.jpg");
    Write(Folder() / "Covers/locked.jpg", "image");
    EXPECT_TRUE(support::RunsWellUnprivileged(Folder(), [&] {
        fs::permissions(Folder() / "Covers/locked.jpg", fs::perms::none);
        BuildAlbumPicker(run);
        EXPECT_THAT(host.log, ElementsAre("Quillon: BuildcdjPages  Line 3 Permission denied: "
                                          R"(D:\Covers\locked.jpg)"));
    }));
    EXPECT_NE(outside::ContentOf(Pages() / "AlbumPicker1.asp").find("albumcovers/notfnd.jpg "),
              std::string::npos);
}

}  // namespace
}  // namespace quillon
