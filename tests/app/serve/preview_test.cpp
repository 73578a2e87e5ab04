#include "app/serve/preview.h"

#include <fstream>
#include <gtest/gtest.h>

#include "jet/database.h"
#include "jukebox/jukebox_database.h"
#include "tests/app/serve/has.h"
#include "tests/outside/temporary_folder.h"
#include "tests/support/fakes.h"

namespace quillon {
namespace {

namespace fs = std::filesystem;

const std::string Index = "/Quillon/AlbumPicker/AlbumPicker0.asp";
const std::string Player = "/Quillon/Quillon.asp";

std::string Header(const WebResponse& response, const std::string& name) {
    for (const auto& [key, value] : response.headers) {
        if (key == name) return value;
    }
    return "";
}

class PreviewTest : public testing::Test {
  protected:
    PreviewTest() { UsePickerFolder({"Quillon", "AlbumPicker"}); }

    void UsePickerFolder(const std::vector<std::string>& pickerFolder) {
        preview_ = std::make_unique<Preview>(
            Preview::Site{folder_.Path() / "HTML", pickerFolder, "quillon run --host <here>",
                          folder_.Path() / "jukebox.mdb", ""},
            clock_);
    }

    void Write(const std::string& name, const std::string& content) const {
        fs::create_directories((folder_.Path() / name).parent_path());
        std::ofstream(folder_.Path() / name, std::ios::binary) << content;
    }

    void WriteIndex(const std::string& name = "HTML" + Index) const {
        Write(name,
              "<!--#include virtual=\"/includes/style.asp\"-->\r\n"
              "<!--#include virtual=\"/includes/header.asp\"-->\r\n"
              "<%\r\n"
              "If Request.ServerVariables(\"AUTH_USER\") = \"guest\" Then "
              "Response.Redirect(\"/unauthorized.asp\")\r\n"
              "Response.Write CustomHeader(\"Album Picker <Index> Page\")\r\n"
              "%>\r\n<br><br>\r\nthumbnails\r\n<%Response.Write CustomFooter()%>");
    }

    const fs::path& Folder() const { return folder_.Path(); }

    WebResponse Ask(const std::string& target, const std::string& method = "GET",
                    const std::vector<std::string>& hosts = {"localhost:8777"}) const {
        return preview_->Answer({method, target, hosts});
    }

  private:
    outside::TemporaryFolder folder_;
    fakes::FakeClock clock_;
    std::unique_ptr<Preview> preview_;
};

TEST_F(PreviewTest, LeadsToTheIndexOrTellsHowToMakeOne) {
    const WebResponse before = Ask("/");
    EXPECT_EQ(before.status, 200);
    EXPECT_TRUE(Has(before.text, "AlbumPicker=1"));
    EXPECT_TRUE(Has(before.text, "quillon run --host &#60;here&#62;"));
    WriteIndex();
    const WebResponse after = Ask("/");
    EXPECT_EQ(after.status, 302);
    EXPECT_EQ(Header(after, "Location"), Index);
}

TEST_F(PreviewTest, GivesAPickerPageItsHeadAndFoot) {
    WriteIndex();
    const WebResponse page = Ask("/quillon/albumpicker/ALBUMPICKER0.ASP");
    EXPECT_EQ(page.status, 200);
    EXPECT_EQ(page.type, "text/html; charset=windows-1252");
    EXPECT_TRUE(page.text.starts_with("<!DOCTYPE html>"));
    EXPECT_TRUE(Has(page.text, "<title>Album Picker &#60;Index&#62; Page</title>"));
    EXPECT_TRUE(Has(page.text, "thumbnails"));
    EXPECT_TRUE(Has(page.text, "</html>"));
    EXPECT_FALSE(Has(page.text, "<%"));
    EXPECT_FALSE(Has(page.text, "#include"));
}

TEST_F(PreviewTest, TheSitesOwnIncludesComeFirst) {
    WriteIndex();
    Write("HTML/includes/style.asp", "own style<% Secret %>");
    const WebResponse page = Ask(Index);
    EXPECT_TRUE(page.text.starts_with("own style\r\n")) << page.text;
    EXPECT_FALSE(Has(page.text, "Secret"));
    EXPECT_EQ(Ask("/includes/header.asp").status, 404) << "the built-in ones are no pages";
}

TEST_F(PreviewTest, ServerCodeIsNeitherRunNorShown) {
    Write("HTML/other.asp", "a<% Response.Write Now %>b");
    const WebResponse page = Ask("/other.ASP");
    EXPECT_TRUE(Has(page.text, "the preview does not run it"));
    EXPECT_FALSE(Has(page.text, "Now"));
}

TEST_F(PreviewTest, FindsThePagesWhereverTheyWereMade) {
    UsePickerFolder({"AlbumPicker"});
    WriteIndex("HTML/AlbumPicker/AlbumPicker0.asp");
    EXPECT_EQ(Header(Ask("/"), "Location"), Index);
    EXPECT_EQ(Ask(Index).status, 200);
    EXPECT_EQ(Ask("/Quillon/AlbumPicker/x.asp").status, 404);
}

TEST_F(PreviewTest, FilesAreSentAsTheyAre) {
    Write("HTML/Quillon/albumcovers/Cover.JPG", "jpeg");
    const WebResponse cover = Ask("/Quillon/albumcovers/Cover.jpg");
    EXPECT_EQ(cover.status, 200);
    EXPECT_EQ(cover.type, "image/jpeg");
    ASSERT_TRUE(cover.file.has_value());
    EXPECT_EQ(cover.file->Read(), "jpeg");
    Write("HTML/a.unknown", "x");
    EXPECT_EQ(Ask("/a.unknown").type, "application/octet-stream");
}

TEST_F(PreviewTest, NothingOutsideTheFolderIsServed) {
    Write("HTML/x.txt", "x");
    Write("Quillon.ini", "secret");
    for (const char* const target :
         {"/../Quillon.ini", "/%2e%2e/Quillon.ini", "/..%5cQuillon.ini", "/x.txt/../../Quillon.ini",
          "/%2fetc%2fpasswd", "//etc/passwd", "/x.txt%00.jpg", "/Quillon", "/nowhere.asp"})
        EXPECT_EQ(Ask(target).status, 404) << target;
}

TEST_F(PreviewTest, AnswersToThisComputersNamesAlone) {
    EXPECT_EQ(Ask("/", "GET", {"127.0.0.1"}).status, 200);
    EXPECT_EQ(Ask("/", "GET", {"evil.example"}).status, 403);
    EXPECT_EQ(Ask("/", "GET", {}).status, 403);
    EXPECT_EQ(Ask("/", "GET", {"localhost", "evil.example"}).status, 403);
    EXPECT_EQ(Ask(Player + "?ClientAction=clear", "GET", {"evil.example"}).status, 403);
    EXPECT_FALSE(Has(Ask(Player).text, "Clear the playlist"));
}

TEST_F(PreviewTest, PagesCanOnlyBeRead) {
    for (const char* const method : {"POST", "PUT", "DELETE", "OPTIONS", "PATCH", ""}) {
        const WebResponse refused = Ask(Player + "?ClientAction=clear", method);
        EXPECT_EQ(refused.status, 405);
        EXPECT_EQ(Header(refused, "Allow"), "GET, HEAD");
    }
    EXPECT_EQ(Ask("/", "HEAD").status, 200);
    EXPECT_EQ(Ask(Player + "?ClientAction=clear", "HEAD").status, 200);
    EXPECT_FALSE(Has(Ask(Player).text, "Clear the playlist"));
}

TEST_F(PreviewTest, ThePlayerNotesARequestAndShowsItOnce) {
    CreateJukeboxDatabase(Folder() / "jukebox.mdb");
    {
        jet::Database database =
            jet::Database::Open(Folder() / "jukebox.mdb", jet::OpenMode::ReadWrite);
        database.Execute(
            "INSERT INTO Albums (CDJID, Artist, Title) VALUES ('A1', 'Alder', 'Light')");
    }
    const WebResponse asked =
        Ask("/quillon/quillon.ASP?Frame=Picker&ClientAction=play&CDJID=A1&ref=0");
    EXPECT_EQ(asked.status, 303);
    EXPECT_EQ(Header(asked, "Location"), Player);
    for (int visit = 0; visit < 2; ++visit) {
        const WebResponse page = Ask(Player);
        EXPECT_EQ(page.status, 200);
        EXPECT_TRUE(Has(page.text, "<td>1</td><td>05:38:55</td><td>Play Light by Alder now</td>"))
            << page.text;
        EXPECT_FALSE(Has(page.text, "<td>2</td>"));
    }
}

TEST_F(PreviewTest, ThePlayerComesBeforeAFileOfItsName) {
    Write("HTML/Quillon/Quillon.asp", "the host's");
    EXPECT_TRUE(Has(Ask(Player).text, "No request so far."));
}

TEST_F(PreviewTest, HasAStyleOfItsOwn) {
    EXPECT_EQ(Ask("/quillon-preview/style.css").type, "text/css");
    EXPECT_EQ(Ask("/quillon-preview/icon.svg").type, "image/svg+xml");
    EXPECT_EQ(Ask("/quillon-preview/player.html").status, 404);
}

}  // namespace
}  // namespace quillon
