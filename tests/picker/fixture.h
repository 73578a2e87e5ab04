#pragma once

#include <cstdint>
#include <gtest/gtest.h>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "picker/album_picker.h"
#include "picker/locations.h"
#include "platform/portable/jet_database.h"
#include "tests/outside/temporary_folder.h"
#include "tests/support/fakes.h"
#include "tests/support/faulty_connection.h"

namespace quillon {

/// The real provider; notes what it is asked to open, and may refuse it.
class NotingProvider : public DatabaseProvider {
  public:
    explicit NotingProvider(const DriveTable& drives);

    std::unique_ptr<Connection> Open(std::string_view connectionString) override;

    std::vector<std::string> opened;
    bool refuses = false;
    std::vector<std::string> refusedStatements;  ///< of the connections opened from now on

  private:
    PathResolver resolver_;
    JetDatabaseProvider real_;
};

/// A run with a real database, in D:\, and files in memory. The host lies in C:\HomeSeer.
class PickerFixture : public ::testing::Test {
  protected:
    using Run = quillon::Run;  // not the one of ::testing::Test

    PickerFixture();

    struct AlbumRow {
        std::string cdjid = {}, artist = {}, title = {};
        int tracks = 8;
        std::string image = {};
    };

    /// Adds an album row, and as many tracks as it claims to have: "Song 1" and so on, n minutes
    /// and n seconds long.
    void AddAlbum(const AlbumRow& album);
    /// So many albums of eight tracks: "Artist 0001", "Album 0001".
    void AddAlbums(int count);
    void Execute(std::string_view sql) { run.connection->Execute(sql); }

    void Build() { BuildAlbumPicker(run); }

    /// A page of the set that is in its place.
    std::string Page(int number) const { return files.Content(PagePath(number)); }
    bool HasPage(int number) { return files.FileExists(PagePath(number)); }
    static std::string PagePath(int number);

    /// Names in a folder of the files in memory.
    std::vector<std::string> Names(std::string_view folder);
    /// The items that were shown, in order.
    std::vector<std::string> Items() const;

    static std::size_t Count(std::string_view text, std::string_view piece);

    static constexpr const char* Base = R"(C:\HomeSeer\HTML\Quillon)";
    static constexpr const char* Folder = R"(C:\HomeSeer\HTML\Quillon\AlbumPicker)";
    static constexpr const char* Covers = R"(C:\HomeSeer\HTML\Quillon\albumcovers\)";

    fakes::FakeWorld world;
    fakes::FakeFiles& files = world.files;
    std::vector<std::string>& log = world.host.log;
    Run& run = world.run;

  private:
    outside::TemporaryFolder folder_;

  protected:
    NotingProvider databases;
};

}  // namespace quillon
