// Measures how long it takes to work off differences between tags and database, one for each file
// of a library, beside a bare walk over the same files.

#include <chrono>
#include <cstddef>
#include <filesystem>
#include <fmt/format.h>
#include <iostream>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "bench/figures.h"
#include "bench/host_folder.h"

namespace {

using quillon::bench::RunToSuccess;
using quillon::bench::Usage;

/// A library that the database knows.
class Stage {
  public:
    explicit Stage(std::size_t tracks)
        : music_(tracks, quillon::bench::FileNames::ByArtist),
          host_(QUILLON_PROGRAM, music_.Root()) {
        for (const std::string_view lists : {"ArtistPlaylist", "GenrePlaylist"})
            host_.Set(lists, "0");
        host_.Run();
        host_.Set("Reconcile", "0");
    }

    std::filesystem::path Music() const { return music_.Root(); }

    void Execute(const std::string& sql) const {
        RunToSuccess({QUILLON_PROGRAM, "db", "exec", host_.Database().string(), sql});
    }

    Usage RunMode(std::string_view mode) const {
        host_.Set(mode, "1");
        const Usage used = host_.Run();
        host_.Set(mode, "0");
        return used;
    }

  private:
    quillon::bench::MusicTree music_;
    quillon::bench::HostFolder host_;
};

double SecondsOfWalk(const Stage& stage) {
    const auto start = std::chrono::steady_clock::now();
    quillon::bench::BareWalk(stage.Music());
    const std::chrono::duration<double> elapsed = std::chrono::steady_clock::now() - start;
    return elapsed.count();
}

/// A row for each track.
std::string InsertDifferences(const std::string& field, const std::string& tagValue) {
    return fmt::format(
        "INSERT INTO SpinnerID3Differences (Field, ID3Value, DBValue, Artist, Album, Track) "
        "SELECT '{}', '{}', '', Albums.Artist, Albums.Title, Tracks.Title "
        "FROM Albums INNER JOIN Tracks ON Albums.CDJID = Tracks.CDJID",
        field, tagValue);
}

void Print(const std::string& what, const Usage& used, double walk) {
    std::cout << fmt::format("{:<34} {:>8.3f} s {:>7.1f}x {:>7.1f} MB\n", what, used.seconds,
                             used.seconds / walk,
                             static_cast<double>(used.peakMemory) / quillon::bench::Megabyte);
}

void Measure(std::size_t tracks) {
    const Stage stage(tracks);
    stage.Execute("UPDATE Spinner SET Genre = 'Jazz', Length = 0");
    const double walk = SecondsOfWalk(stage);
    std::cout << fmt::format("{} tracks with a difference each; bare walk {:.3f} s\n", tracks,
                             walk);
    stage.Execute(InsertDifferences("Genre", "Rock"));
    Print("ID3Write, every tag changes", stage.RunMode("ID3Write"), walk);
    Print("ID3Write, every tag is right", stage.RunMode("ID3Write"), walk);
    Print("ID3Update, genres change", stage.RunMode("ID3Update"), walk);
    stage.Execute("DELETE * FROM SpinnerID3Differences");
    stage.Execute(InsertDifferences("Comment", "Length=77"));
    Print("ID3Update, lengths change", stage.RunMode("ID3Update"), walk);
    Print("ID3Update, lengths are right", stage.RunMode("ID3Update"), walk);
}

}  // namespace

int main(int count, char** arguments) {
    try {
        for (const std::size_t tracks : quillon::bench::SizesFrom(
                 {arguments, static_cast<std::size_t>(count)}, "tag_bench [TRACKS...]", {100'000}))
            Measure(tracks);
        return 0;
    } catch (const std::exception& error) {
        std::cerr << "tag_bench: " << error.what() << '\n';
        return 2;
    }
}
