#pragma once

#include <filesystem>
#include <functional>
#include <memory>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "run/run.h"
#include "tests/outside/temporary_folder.h"
#include "tests/support/fakes.h"
#include "tests/support/faulty_connection.h"
#include "tests/support/sound_file.h"

namespace quillon::support {

/// A run over a music folder in memory and a real database. The library root is D:\Music; the files
/// are as old as the test says.
class TestLibrary {
  public:
    TestLibrary();

    /// Adds a sound file below the root, `minutes` younger than a fixed time.
    void AddFile(const std::string& path, int minutes = 0);
    void AddFile(const std::string& path, const RawTag& tag, int minutes = 0);
    void AddFolder(const std::string& path) { files.AddFolder(Root + path); }
    void RemoveFile(const std::string& path) { files.DeleteFile(Root + path); }

    /// Marks, walks and sweeps, as the driver's phases do.
    void Reconcile();

    std::vector<std::string> Rows(std::string_view sql);
    /// As another program would between two runs: the run reads its tables again.
    std::int64_t Execute(std::string_view sql) {
        run.ForgetTables();
        return Database().Execute(sql);
    }
    FaultyConnection& Database() { return *database_; }
    std::filesystem::path DatabaseFile() const { return folder_.Path() / "jukebox.mdb"; }

    void AddAlbumRow(std::string_view cdjid, std::string_view artist, std::string_view title,
                     int tracks, int player = 1001);
    void AddTrackRow(std::string_view cdjid, int number, std::string_view soundFile,
                     std::string_view title = "old title");

    /// All albums as "Artist|Title|Tracks", by artist and title.
    std::vector<std::string> Albums();
    /// All tracks as "file name below the root|Title|Track", by file name.
    std::vector<std::string> Tracks();

    /// Closes the database and opens it again from its file, as a next run would find it.
    void ReopenDatabase();

    /// The database file's content, for which it is closed and opened again.
    std::string DatabaseBytes();

    /// What the independent structural check finds in the database file, which it closes; "" when
    /// it is whole.
    std::string Faults();

    static constexpr const char* Root = R"(D:\Music\)";

    /// Files in memory, of which some folders cannot be listed.
    class Files : public fakes::FakeFiles {
      public:
        using FakeFiles::FakeFiles;
        Listing<FolderEntry> SubFolders(std::string_view folder) override;
        Listing<FileEntry> FilesIn(std::string_view folder) override;

        std::set<std::string> unlistable;    ///< full paths
        std::function<void()> afterListing;  ///< runs once, when files have been listed

      private:
        void RefuseUnlistable(std::string_view folder) const;
    };

    fakes::Calls calls;
    fakes::FakeHost host{calls};
    Files files{calls};
    fakes::FakeClock clock;
    fakes::FakeWindow window{calls};
    quillon::Run run{host, files, clock, window};

  private:
    outside::TemporaryFolder folder_;
    FaultyConnection* database_ = nullptr;  ///< owned by the run
};

}  // namespace quillon::support
