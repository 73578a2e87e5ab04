// Measures single phases of a run over tables and folders of growing size, each once with all to do
// and once with nothing left to do, and how the time grows with the size.

#include <array>
#include <cstddef>
#include <ctime>
#include <filesystem>
#include <fmt/format.h>
#include <fstream>
#include <functional>
#include <iostream>
#include <memory>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "app/local_host.h"
#include "bench/figures.h"
#include "bench/main.h"
#include "compat/refresh_spinner.h"
#include "covers/refresh_album_covers.h"
#include "download/populate_spinner_artist.h"
#include "download/populate_spinner_tracks.h"
#include "jukebox/jukebox_database.h"
#include "platform/database.h"
#include "platform/no_window.h"
#include "remote/make_remote.h"
#include "run/run.h"
#include "tests/outside/temporary_folder.h"

namespace quillon::bench {
namespace {

namespace fs = std::filesystem;

constexpr std::size_t TracksPerAlbum = 10, AlbumsPerArtist = 4;

fs::path MakeHostFolder(const fs::path& folder) {
    fs::create_directories(folder / "disk" / "Covers");
    std::ofstream(folder / "host.ini") << "[Plugins]\nQuillon=1\n[Drives]\nD=disk\n";
    std::ofstream(folder / "Quillon.ini") << "[NPFrame]\n";
    CreateJukeboxDatabase(folder / "disk" / "jukebox.mdb");
    return folder;
}

/// A database of so many tracks, ten an album, and a cover for each album.
class Stage {
  public:
    explicit Stage(std::size_t tracks) : local_(MakeHostFolder(folder_.Path()), Drop) {
        run.settings.AlbumCoverFolder = "D:\\Covers\\";
        run.settings.LibraryRoot = "D:\\Music\\";
        run.settings.PlayListPath = run.settings.PlayListPath2 = "D:\\Lists\\";
        run.connection = local_.databases.Open(
            "Provider = Microsoft.Jet.OLEDB.4.0; Data Source=D:\\jukebox.mdb");
        Fill(tracks);
    }

  private:
    static void Drop(LogKind, const std::string&) {}
    void Fill(std::size_t tracks);

    outside::TemporaryFolder folder_;
    LocalHost local_;
    NoWindow window_;

  public:
    Run run{local_.host, local_.files, local_.clock, window_};
};

void Stage::Fill(std::size_t tracks) {
    const auto albumRows = run.connection->OpenTable("Albums");
    const auto trackRows = run.connection->OpenTable("Tracks");
    for (std::size_t track = 0; track < tracks; ++track) {
        const std::size_t album = track / TracksPerAlbum;
        const std::string artistName = fmt::format("Artist {}", album / AlbumsPerArtist);
        const std::string albumName = fmt::format("Album {}", album);
        const std::string cdjid = fmt::format("A{}", album);
        if (track % TracksPerAlbum == 0) {
            albumRows->AddNew();
            albumRows->Set("CDJID", cdjid);
            albumRows->Set("Artist", artistName);
            albumRows->Set("Title", albumName);
            albumRows->Update();
            std::ofstream(folder_.Path() / "disk" / "Covers" /
                          fmt::format("{} - {}.jpg", artistName, albumName));
        }
        const std::string song = fmt::format("Song {}", track);
        trackRows->AddNew();
        trackRows->Set("CDJID", cdjid);
        trackRows->Set("Title", song);
        trackRows->Set("Minutes", std::int64_t{3});
        trackRows->Set("Seconds", std::int64_t{5});
        trackRows->Set("SoundFile", fmt::format("D:\\Music\\{}\\{}\\{} - {}.mp3", artistName,
                                                albumName, artistName, song));
        trackRows->Update();
    }
    run.connection->Flush();
}

struct Measured {
    std::string_view what;
    std::function<void(Run&)> work;
};

/// In this order each one finds what it needs; the second of two of a name has nothing to do.
/// RefreshSpinner comes last: the look-ups of its kind leave an index on sound files, which a
/// remote reference run, where it has none, need not maintain.
const std::array Phases{
    Measured{"RefreshAlbumCovers, all covers new", RefreshAlbumCovers},
    Measured{"RefreshAlbumCovers, nothing new", RefreshAlbumCovers},
    Measured{"MakeRemote, every sound file changes",
             [](Run& run) {
                 run.settings.LibraryRoot = "\\\\nas\\music\\";
                 MakeRemote(run);
             }},
    Measured{"MakeRemote, no path changes", MakeRemote},
    Measured{"PopulateSpinnerTracks, all songs new", PopulateSpinnerTracks},
    Measured{"PopulateSpinnerTracks, nothing new", PopulateSpinnerTracks},
    Measured{"PopulateSpinnerArtist, all artists new", PopulateSpinnerArtist},
    Measured{"PopulateSpinnerArtist, nothing new", PopulateSpinnerArtist},
    Measured{"RefreshSpinner, nothing to remove", RefreshSpinner},
};

using Seconds = std::array<double, Phases.size()>;

/// Processor time, with what it takes to make the changes durable: other work on the machine counts
/// less in it than in time that passes.
Seconds Measure(std::size_t tracks) {
    Stage stage(tracks);
    Seconds seconds{};
    for (std::size_t i = 0; i < Phases.size(); ++i) {
        const std::clock_t start = std::clock();
        Phases[i].work(stage.run);
        stage.run.connection->Flush();
        seconds[i] = static_cast<double>(std::clock() - start) / CLOCKS_PER_SEC;
        if (stage.run.counts.errors > 0)
            throw std::runtime_error(fmt::format("{} has logged errors", Phases[i].what));
    }
    return seconds;
}

}  // namespace

int Main(std::span<char*> arguments) {
    const std::vector<std::size_t> sizes =
        SizesFrom(arguments, "phase_bench [TRACKS...]", {10'000, 100'000});
    std::vector<Seconds> all;
    all.reserve(sizes.size());
    for (const std::size_t size : sizes)
        all.push_back(Measure(size));
    std::string header = fmt::format("{:<42}", "tracks");
    for (const std::size_t size : sizes)
        header += fmt::format("{:>12}", size);
    std::cout << header << (sizes.size() > 1 ? "   growth exponent" : "") << '\n';
    for (std::size_t i = 0; i < Phases.size(); ++i) {
        std::string line = fmt::format("{:<42}", Phases[i].what);
        for (const Seconds& seconds : all)
            line += fmt::format("{:>10.3f} s", seconds[i]);
        if (sizes.size() > 1) {
            line += fmt::format("{:>18.2f}", GrowthExponent(all.front()[i], all.back()[i],
                                                            sizes.front(), sizes.back()));
        }
        std::cout << line << '\n';
    }
    return 0;
}

}  // namespace quillon::bench
