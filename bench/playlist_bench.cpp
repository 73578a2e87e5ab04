// Measures the playlist phases one by one, in this process and on real files: capture, refresh of
// lists that are right and of lists that all need repair, creation. Prints how time grows with the
// number of lists.

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <filesystem>
#include <fmt/format.h>
#include <fstream>
#include <functional>
#include <iostream>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>
#include <sys/resource.h>
#include <vector>

#include "bench/figures.h"
#include "bench/main.h"
#include "jukebox/jukebox_database.h"
#include "platform/no_window.h"
#include "platform/portable/jet_database.h"
#include "platform/portable/path_resolver.h"
#include "platform/portable/portable_files.h"
#include "platform/portable/system_clock.h"
#include "playlists/capture.h"
#include "playlists/create.h"
#include "playlists/refresh.h"
#include "run/random_numbers.h"
#include "run/run.h"
#include "tests/outside/temporary_folder.h"

namespace quillon::bench {
namespace {

namespace fs = std::filesystem;

constexpr std::int64_t Artists = 2'000, AlbumsAnArtist = 5, TracksAnAlbum = 10, Genres = 20;
constexpr std::int64_t Tracks = Artists * AlbumsAnArtist * TracksAnAlbum;
constexpr std::size_t EntriesAList = 100;

/// Errors would make a measurement worthless; all else that is logged is only counted.
class CountingHost : public Host {
  public:
    std::string GetINISetting(std::string_view, std::string_view, std::string_view fallback,
                              std::string_view) override {
        return std::string(fallback);
    }
    std::vector<std::string> GetINILines(std::string_view, std::string_view) override { return {}; }
    void WriteLog(std::string_view, std::string_view message) override {
        if (message.find("Error:") != std::string_view::npos) {
            throw std::runtime_error(std::string(message));
        }
        ++records;
    }
    std::vector<std::string> GetPlugins() override { return {"Quillon"}; }
    std::string GetAppPath() override { return "H:"; }

    std::size_t records = 0;
};

DriveTable Drives(const fs::path& folder) {
    DriveTable drives(folder);
    drives.Map("D", folder);
    return drives;
}

std::string Cdjid(std::int64_t album) {
    return fmt::format("252E671073EC{:05}", album);
}

/// A database of 100,000 tracks and a folder of playlists.
class Stage {
  public:
    Stage() {
        fs::create_directory(Lists());
        CreateJukeboxDatabase(folder_.Path() / "jukebox.mdb");
        run.settings.Nirvis_CDJ_DB = R"(D:\jukebox.mdb)";
        run.settings.PlayListPath = R"(D:\Lists\)";
        run.connection = JetDatabaseProvider(resolver_).Open(
            R"(Provider = Microsoft.Jet.OLEDB.4.0; Data Source=D:\jukebox.mdb)");
        FillTracks();
        FillDownloadTable();
        run.connection->Flush();
    }

    void MakeLists(std::size_t count) const {
        fs::remove_all(Lists());
        fs::create_directory(Lists());
        RandomNumbers random;
        for (std::size_t list = 0; list < count; ++list) {
            std::ofstream file(Lists() / fmt::format("List {}.pla", list), std::ios::binary);
            file << "CDJ Playlist V1.1\r\n";
            for (std::size_t entry = 0; entry < EntriesAList; ++entry) {
                const auto track = static_cast<std::int64_t>(random.Next() * Tracks);
                file << Cdjid(track / TracksAnAlbum) << ' ' << track % TracksAnAlbum << "\r\n";
            }
        }
    }

    fs::path Lists() const { return folder_.Path() / "Lists"; }

  private:
    void FillTracks() {
        const auto table = run.connection->OpenTable("Tracks");
        for (std::int64_t track = 0; track < Tracks; ++track) {
            const std::int64_t album = track / TracksAnAlbum;
            table->AddNew();
            table->Set("CDJID", Cdjid(album));
            table->Set("Track", track % TracksAnAlbum + 1);
            table->Set("Title", fmt::format("Song {}", track));
            table->Set("Artist", fmt::format("Artist {}", album / AlbumsAnArtist));
            table->Set("SoundFile", fmt::format(R"(D:\Music\{}\{}.mp3)", album, track));
            table->Update();
        }
    }

    void FillDownloadTable() {
        const auto table = run.connection->OpenTable("Spinner");
        for (std::int64_t track = 0; track < Tracks; ++track) {
            const std::int64_t artist = track / TracksAnAlbum / AlbumsAnArtist;
            table->AddNew();
            table->Set("Song", fmt::format("Song {}", track));
            table->Set("Artist", fmt::format("Artist {}", artist));
            table->Set("Genre", fmt::format("Genre {}", artist % Genres));
            table->Set("Exclude", std::int64_t{0});
            table->Update();
        }
    }

    outside::TemporaryFolder folder_;
    PathResolver resolver_{Drives(folder_.Path())};
    PortableFiles files_{resolver_, [](LogKind, const std::string&) {}};
    SystemClock clock_;
    NoWindow window_;

  public:
    CountingHost host;
    Run run{host, files_, clock_, window_};
};

double Seconds(const std::function<void()>& work) {
    const auto start = std::chrono::steady_clock::now();
    work();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

struct Times {
    double capture = 0, unchanged = 0, repair = 0;  ///< seconds
};

Times MeasureRepair(Stage& stage, std::size_t lists) {
    Run& run = stage.run;
    run.settings.GenrePlaylist = run.settings.ArtistPlaylist = false;
    Times figures;
    stage.MakeLists(lists);
    BuildORsRecordset(run);
    CapturePlaylists(run);
    figures.unchanged = Seconds([&] { RefreshPlaylist(run); });
    BuildORsRecordset(run);
    figures.capture = Seconds([&] { CapturePlaylists(run); });
    run.connection->Execute(fmt::format("UPDATE Tracks SET Track = {} - Track", TracksAnAlbum + 1));
    figures.repair = Seconds([&] { RefreshPlaylist(run); });
    return figures;
}

double MeasureCreation(Stage& stage) {
    Run& run = stage.run;
    stage.MakeLists(0);
    run.settings.GenrePlaylist = run.settings.ArtistPlaylist = true;
    BuildORsRecordset(run);
    return Seconds([&] { CreateNewPlaylists(run); });
}

double PeakMegabytes() {
    rusage used{};
    getrusage(RUSAGE_SELF, &used);
    return static_cast<double>(used.ru_maxrss) / 1024;
}

}  // namespace

int Main(std::span<char*> /*arguments*/) {
    Stage stage;
    std::cout << fmt::format("{} tracks; lists of {} entries\n\n{:>8} {:>10} {:>12} {:>12} {:>9}\n",
                             Tracks, EntriesAList, "lists", "capture", "all right", "all repaired",
                             "peak MB");
    std::vector<Times> all;
    const std::vector<std::size_t> sizes{1'000, 10'000};
    for (const std::size_t lists : sizes) {
        const Times f = MeasureRepair(stage, lists);
        all.push_back(f);
        std::cout << fmt::format("{:>8} {:>8.2f} s {:>10.2f} s {:>10.2f} s {:>9.0f}\n", lists,
                                 f.capture, f.unchanged, f.repair, PeakMegabytes());
    }
    const auto growth = [&](double Times::* time) {
        return GrowthExponent(all[0].*time, all[1].*time, sizes[0], sizes[1]);
    };
    std::cout << fmt::format("growth   {:>10.2f} {:>12.2f} {:>12.2f}\n\n", growth(&Times::capture),
                             growth(&Times::unchanged), growth(&Times::repair));
    const double creation = MeasureCreation(stage);
    std::cout << fmt::format("{} artists, {} genres: {} playlists made in {:.2f} s\n", Artists,
                             Genres, stage.run.counts.playlistsWritten, creation);
    return 0;
}

}  // namespace quillon::bench
