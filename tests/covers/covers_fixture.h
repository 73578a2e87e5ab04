#pragma once

#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "covers/refresh_album_covers.h"
#include "database/sql.h"
#include "tests/support/test_library.h"

namespace quillon {

/// Albums, and images in the cover folder.
class RefreshAlbumCoversTest : public ::testing::Test {
  protected:
    RefreshAlbumCoversTest() {
        library.run.settings.AlbumCoverFolder = Folder;
        library.files.AddFolder(R"(D:\Covers)");
    }

    void AddImage(const std::string& name) { library.files.AddFile(Folder + name); }
    void AddAlbum(const std::string& artist, const std::string& title,
                  const std::string& imageFile = "Null") {
        library.Execute("INSERT INTO Albums (Artist, Title, ImageFile) VALUES (" +
                        FilterQuoted(artist) + ", " + FilterQuoted(title) + ", " +
                        (imageFile == "Null" ? imageFile : FilterQuoted(imageFile)) + ")");
    }
    void Refresh() { RefreshAlbumCovers(library.run); }

    /// The image files of all albums, by ID.
    std::vector<std::string> Images() {
        return library.Rows("SELECT ImageFile FROM Albums ORDER BY ID");
    }
    const std::vector<std::string>& Log() { return library.host.log; }

    void ScanLibraryTree(const std::string& reserved = "") {
        library.host.Set("ScanLibrary", "1");
        library.host.Set("ReservedFolder", reserved);
    }

    static constexpr const char* Folder = R"(D:\Covers\)";
    support::TestLibrary library;
};

}  // namespace quillon
