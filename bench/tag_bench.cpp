// Measures how long it takes to work off differences between tags and database, one for each file
// of a library, beside a bare walk over the same files.

#include <chrono>
#include <cstddef>
#include <cstdlib>
#include <filesystem>
#include <fmt/format.h>
#include <fstream>
#include <iostream>
#include <span>
#include <string>
#include <vector>

#include "bench/child_process.h"
#include "bench/music_library.h"
#include "tests/outside/temporary_folder.h"

namespace {

namespace fs = std::filesystem;
using quillon::bench::RunToSuccess;
using quillon::bench::Usage;

/// A host folder with a library that the database knows, in a folder of its own.
class Stage {
  public:
    explicit Stage(std::size_t tracks) {
        fs::create_directories(Data());
        quillon::bench::MakeLibrary(Music(), tracks, quillon::bench::FileNames::ByArtist);
        std::ofstream(folder_ / "host.ini") << "[Plugins]\nQuillon=1\n[Drives]\nD=disk\n";
        RunToSuccess({QUILLON_PROGRAM, "db", "create", Database()});
        RunMode("Reconcile=1\nID3Reconcile=0\n");
    }

    fs::path Music() const { return folder_ / "disk" / "Music"; }

    void Execute(const std::string& sql) const {
        RunToSuccess({QUILLON_PROGRAM, "db", "exec", Database(), sql});
    }

    Usage RunMode(const std::string& settings) const {
        std::ofstream(folder_ / "Quillon.ini")
            << "[NPFrame]\nLibraryRoot=D:\\Music\nNirvis_CDJ_DB=D:\\Data\\jukebox.mdb\n"
            << settings;
        return RunToSuccess(
            {QUILLON_PROGRAM, "run", "--host", folder_.string(), "--view", "plain"});
    }

  private:
    fs::path Data() const { return folder_ / "disk" / "Data"; }
    std::string Database() const { return (Data() / "jukebox.mdb").string(); }

    outside::TemporaryFolder made_;
    fs::path folder_ = made_.Path();
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
    constexpr double Megabyte = 1024.0 * 1024.0;
    std::cout << fmt::format("{:<34} {:>8.3f} s {:>7.1f}x {:>7.1f} MB\n", what, used.seconds,
                             used.seconds / walk, static_cast<double>(used.peakMemory) / Megabyte);
}

void Measure(std::size_t tracks) {
    const Stage stage(tracks);
    stage.Execute(
        "INSERT INTO Spinner (Artist, Album, Song, Genre, Length) SELECT Albums.Artist, "
        "Albums.Title, Tracks.Title, 'Jazz', 0 "
        "FROM Albums INNER JOIN Tracks ON Albums.CDJID = Tracks.CDJID");
    const double walk = SecondsOfWalk(stage);
    std::cout << fmt::format("{} tracks with a difference each; bare walk {:.3f} s\n", tracks,
                             walk);
    stage.Execute(InsertDifferences("Genre", "Rock"));
    Print("ID3Write, every tag changes", stage.RunMode("ID3Write=1\n"), walk);
    Print("ID3Write, every tag is right", stage.RunMode("ID3Write=1\n"), walk);
    Print("ID3Update, genres change", stage.RunMode("ID3Update=1\n"), walk);
    stage.Execute("DELETE * FROM SpinnerID3Differences");
    stage.Execute(InsertDifferences("Comment", "Length=77"));
    Print("ID3Update, lengths change", stage.RunMode("ID3Update=1\n"), walk);
    Print("ID3Update, lengths are right", stage.RunMode("ID3Update=1\n"), walk);
}

}  // namespace

int main(int count, char** arguments) {
    try {
        const std::span<char*> sizes = std::span(arguments, static_cast<std::size_t>(count));
        for (const char* const size : sizes.subspan(1))
            Measure(std::stoul(size));
        if (count == 1) Measure(100'000);
        return 0;
    } catch (const std::exception& error) {
        std::cerr << "tag_bench: " << error.what() << '\n';
        return 2;
    }
}
