// Measures how long the album picker mode takes and how that grows with the library.

#include <cstddef>
#include <filesystem>
#include <fmt/format.h>
#include <fstream>
#include <iostream>
#include <span>
#include <string>
#include <vector>

#include "bench/child_process.h"
#include "bench/figures.h"
#include "bench/main.h"
#include "jet/database.h"
#include "jukebox/jukebox_database.h"
#include "tests/outside/temporary_folder.h"

namespace quillon::bench {
namespace {

namespace fs = std::filesystem;

constexpr std::size_t TracksAnAlbum = 12;
constexpr std::size_t CoverSize = 20'000;
constexpr double SteepestGrowth = 1.1;

/// A host folder with a library of so many albums, there for the time of its scope.
class Stage {
  public:
    explicit Stage(std::size_t albums) {
        fs::create_directories(folder_ / "disk" / "Covers");
        CreateJukeboxDatabase(Database());
        std::ofstream(folder_ / "host.ini") << "[Plugins]\nQuillon=1\n[Drives]\nD=disk\n";
        Fill(albums);
    }

    /// Runs the picker with those albums that have so many tracks.
    Usage Build(int leastTracks) const {
        std::ofstream(folder_ / "Quillon.ini")
            << "[NPFrame]\nNirvis_CDJ_DB=D:\\jukebox.mdb\nAlbumPicker=1\n"
               "AlbumCoverFolder=D:\\Covers\\\nPickerMinimum="
            << leastTracks << '\n';
        return RunToSuccess(
            {QUILLON_PROGRAM, "run", "--host", folder_.string(), "--view", "plain"});
    }

    /// Bytes of all pages.
    std::uintmax_t PageBytes() const {
        std::uintmax_t bytes = 0;
        for (const fs::directory_entry& entry :
             fs::directory_iterator(folder_ / "HTML" / "Quillon" / "AlbumPicker"))
            bytes += entry.file_size();
        return bytes;
    }

  private:
    fs::path Database() const { return folder_ / "disk" / "jukebox.mdb"; }

    void Fill(std::size_t albums) const {
        jet::Database database = jet::Database::Open(Database(), jet::OpenMode::ReadWrite);
        const std::string cover(CoverSize, 'x');
        for (std::size_t album = 1; album <= albums; ++album) {
            const std::string id = fmt::format("252E6710{:08}", album);
            const std::string name = fmt::format("Artist {} - Album {}.jpg", album % 997, album);
            std::ofstream(folder_ / "disk" / "Covers" / name, std::ios::binary) << cover;
            database.Execute(fmt::format(
                "INSERT INTO Albums (CDJID, Artist, Title, Tracks, Minutes, Seconds, ImageFile) "
                "VALUES ('{}', 'Artist {}', 'Album {}', {}, -1, -1, 'D:\\Covers\\{}')",
                id, album % 997, album, TracksAnAlbum, name));
            for (std::size_t track = 1; track <= TracksAnAlbum; ++track) {
                database.Execute(
                    fmt::format("INSERT INTO Tracks (CDJID, Track, Title, Minutes, Seconds) "
                                "VALUES ('{}', {}, 'A song of album {}', 3, {})",
                                id, track, album, track));
            }
        }
        database.Flush();
    }

    outside::TemporaryFolder made_;
    fs::path folder_ = made_.Path();
};

struct Figures {
    std::size_t albums = 0;
    Usage none, first, again;
    std::uintmax_t pageBytes = 0;
};

Figures Measure(std::size_t albums) {
    const Stage stage(albums);
    Figures figures{.albums = albums, .none = {}, .first = {}, .again = {}, .pageBytes = 0};
    figures.none = stage.Build(static_cast<int>(TracksAnAlbum) + 1);
    figures.first = stage.Build(1);
    figures.again = stage.Build(1);
    figures.pageBytes = stage.PageBytes();
    return figures;
}

std::string Times(const Usage& usage) {
    return fmt::format("{:>8.3f} s {:>7.3f} s", usage.seconds, usage.processor);
}

void Print(const Figures& figures) {
    std::cout << fmt::format("{:>8} {} {} {} {:>7.1f} MB {:>7.1f} MB", figures.albums,
                             Times(figures.none), Times(figures.first), Times(figures.again),
                             static_cast<double>(figures.pageBytes) / Megabyte,
                             static_cast<double>(figures.first.peakMemory) / Megabyte)
              << std::endl;
}

/// e where time grows as the number of albums to the power of e. Processor time is judged: every
/// page and cover is flushed to the disk by itself, and how long that takes is the disk's affair.
bool JudgeGrowth(const char* what, const Figures& small, const Figures& large,
                 Usage Figures::* run) {
    const double growth =
        GrowthExponent((small.*run).processor, (large.*run).processor, small.albums, large.albums);
    const bool met = growth <= SteepestGrowth;
    std::cout << fmt::format("growth exponent, {}, {} to {} albums: {:.2f}, aim {:.2f}, {}\n", what,
                             small.albums, large.albums, growth, SteepestGrowth,
                             met ? "met" : "MISSED");
    return met;
}

}  // namespace

int Main(std::span<char*> arguments) {
    const std::vector<std::size_t> sizes =
        SizesFrom(arguments, "picker_bench [ALBUMS...]", {1'000, 10'000});
    std::cout << fmt::format("{:>8} {:>20} {:>20} {:>20} {:>10} {:>10}\n", "albums",
                             "no album, processor", "first, processor", "again, processor", "pages",
                             "peak");
    std::vector<Figures> all;
    for (const std::size_t size : sizes) {
        all.push_back(Measure(size));
        Print(all.back());
    }
    bool met = true;
    for (std::size_t i = 1; i < all.size(); ++i) {
        met &= JudgeGrowth("first", all[i - 1], all[i], &Figures::first);
        met &= JudgeGrowth("again", all[i - 1], all[i], &Figures::again);
    }
    return met ? 0 : 1;
}

}  // namespace quillon::bench
