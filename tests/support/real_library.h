#pragma once

#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "platform/portable/path_resolver.h"
#include "platform/portable/portable_files.h"
#include "run/run.h"
#include "tests/outside/temporary_folder.h"
#include "tests/support/fakes.h"
#include "tests/support/faulty_connection.h"

namespace quillon::support {

/// A run over real files: the library root D:\Music is a folder, the database lies in another, all
/// of them in one temporary folder.
class RealLibrary {
  public:
    RealLibrary();

    /// The local path of something below the root.
    std::filesystem::path Music(const std::string& path = "") const;
    std::filesystem::path DatabaseFile() const { return folder_.Path() / "data" / "jukebox.mdb"; }
    const std::filesystem::path& Folder() const { return folder_.Path(); }

    /// Makes a file below the root, `minutes` younger than a fixed time, and the folders above it.
    void AddFile(const std::string& path, const std::string& bytes, int minutes = 0);
    void AddFile(const std::string& path, int minutes = 0);

    void OpenDatabase();
    void CloseDatabase() {
        run.ForgetTables();
        run.connection.reset();
    }
    FaultyConnection& Database() { return *database_; }

    /// Gives back what a killed run has marked, as the driver does; then marks, walks and sweeps.
    void Reconcile();

    std::vector<std::string> Rows(std::string_view sql);
    /// All albums as "Artist|Title|Tracks" and tracks as "SoundFile|Title|Track".
    std::vector<std::string> State();

    /// Closes the database and lets the independent structural check look at it.
    std::string Faults();

    /// Real files; something may happen before one of them is renamed, deleted, written or read.
    class Files : public PortableFiles {
      public:
        using PortableFiles::PortableFiles;
        void MoveFile(std::string_view from, std::string_view to) override;
        void DeleteFile(std::string_view path) override;
        std::unique_ptr<TextWriter> CreateText(std::string_view path) override;
        std::unique_ptr<BinaryReader> OpenBinary(std::string_view path) override;

        std::function<void()> beforeChange = [] {};
        std::function<void(std::string_view path)> beforeReading = [](std::string_view) {};
        std::size_t opened = 0;  ///< how often music files have been, to read their bytes
    };
    Files& RealFiles() { return files_; }

    fakes::Calls calls;
    fakes::FakeHost host{calls};
    fakes::FakeClock clock;
    fakes::FakeWindow window{calls};

  private:
    outside::TemporaryFolder folder_;
    PathResolver resolver_;
    Files files_;
    FaultyConnection* database_ = nullptr;  ///< owned by the run

  public:
    quillon::Run run;
};

/// Runs something in a process of its own that may not do what root may: everything below the
/// folder belongs to it. Whether it ended well (no failed expectation, no exception).
bool RunsWellUnprivileged(const std::filesystem::path& folder, const std::function<void()>& work);

/// Runs something in a process of its own that is expected to be killed. Whether it was.
bool IsKilled(const std::function<void()>& work);

}  // namespace quillon::support
