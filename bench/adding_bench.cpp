// Measures how long adding files to a library takes beside bare copies of the same files.

#include <chrono>
#include <cmath>
#include <cstddef>
#include <fcntl.h>
#include <filesystem>
#include <fmt/format.h>
#include <fstream>
#include <iostream>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>
#include <unistd.h>
#include <vector>

#include "bench/child_process.h"
#include "bench/sizes.h"
#include "tests/outside/temporary_folder.h"

namespace quillon::bench {
namespace {

namespace fs = std::filesystem;

constexpr std::size_t SongsPerAlbum = 10, AlbumsPerArtist = 4;
constexpr std::size_t SoundBytes = 32UL * 1024;

void PutField(std::string& tag, std::size_t offset, std::string_view text) {
    tag.replace(offset, text.size(), text);
}

std::string SoundFile(std::size_t song, std::size_t album, std::size_t artist) {
    constexpr std::size_t TagSize = 128;
    std::string tag(TagSize, '\0');
    PutField(tag, 0, "TAG");
    PutField(tag, 3, fmt::format("Song {}", song));
    PutField(tag, 33, fmt::format("Artist {}", artist));
    PutField(tag, 63, fmt::format("Album {}", album));
    tag[126] = static_cast<char>(song % SongsPerAlbum + 1);
    tag[127] = 17;
    return std::string(SoundBytes, 'x') + tag;
}

/// New files in album folders of artist folders, each with a tag, and a picture for each album.
void MakeNewFiles(const fs::path& root, std::size_t songs) {
    for (std::size_t song = 0; song < songs; ++song) {
        const std::size_t album = song / SongsPerAlbum, artist = album / AlbumsPerArtist;
        const fs::path folder =
            root / fmt::format("Artist {}", artist) / fmt::format("Album {}", album);
        if (song % SongsPerAlbum == 0) {
            fs::create_directories(folder);
            std::ofstream(folder / "front.jpg") << "picture";
        }
        std::ofstream(folder / fmt::format("{}.mp3", song), std::ios::binary)
            << SoundFile(song, album, artist);
    }
}

double SecondsSince(std::chrono::steady_clock::time_point start) {
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

/// A file or a folder's list of names.
void BringToDisk(const fs::path& path) {
    const int descriptor = open(path.c_str(), O_RDONLY | O_CLOEXEC);
    if (descriptor < 0 || fsync(descriptor) != 0) {
        throw std::runtime_error("cannot write " + path.string());
    }
    close(descriptor);
}

/// A copy that appears whole, and is on the disk before anything else happens.
void CopySafely(const fs::path& from, const fs::path& to) {
    const fs::path unfinished = to.string() + ".new";
    fs::copy_file(from, unfinished);
    BringToDisk(unfinished);
    fs::rename(unfinished, to);
    BringToDisk(to.parent_path());
}

enum class Way { Plain, Safe };

/// The yardsticks: copies of the tree.
double SecondsOfCopy(const fs::path& from, const fs::path& to, Way way) {
    const auto start = std::chrono::steady_clock::now();
    fs::create_directories(to);
    for (const fs::directory_entry& entry : fs::recursive_directory_iterator(from)) {
        const fs::path target = to / fs::relative(entry.path(), from);
        if (entry.is_directory()) {
            fs::create_directory(target);
        } else if (way == Way::Plain) {
            fs::copy_file(entry.path(), target);
        } else {
            CopySafely(entry.path(), target);
        }
    }
    return SecondsSince(start);
}

/// The program beside files to be added.
class Stage {
  public:
    explicit Stage(std::size_t songs) {
        for (const char* const name : {"Music", "Covers", "Data"})
            fs::create_directories(Disk() / name);
        MakeNewFiles(Disk() / "New", songs);
        std::ofstream(folder_.Path() / "host.ini") << "[Plugins]\nQuillon=1\n[Drives]\nD=disk\n";
        std::ofstream(folder_.Path() / "Quillon.ini")
            << "[NPFrame]\nLibraryRoot=D:\\Music\nNirvis_CDJ_DB=D:\\Data\\jukebox.mdb\n"
               "AddFiles=1\nFromFilesPath=D:\\New\nAlbumCoverFolder=D:\\Covers\n";
        RunToSuccess({QUILLON_PROGRAM, "db", "create", (Disk() / "Data" / "jukebox.mdb").string()});
    }

    fs::path Disk() const { return folder_.Path() / "disk"; }

    Usage Add() const {
        return RunToSuccess(
            {QUILLON_PROGRAM, "run", "--host", folder_.Path().string(), "--view", "plain"});
    }

  private:
    outside::TemporaryFolder folder_;
};

struct Figures {
    std::size_t songs = 0;
    double copy = 0, safeCopy = 0;  ///< seconds
    Usage added{}, again{};
};

std::size_t FilesBelow(const fs::path& folder) {
    std::size_t files = 0;
    for (const fs::directory_entry& entry : fs::recursive_directory_iterator(folder))
        files += entry.is_regular_file() ? 1U : 0U;
    return files;
}

Figures Measure(std::size_t songs) {
    const Stage stage(songs);
    sync();
    Figures figures{.songs = songs};
    const fs::path source = stage.Disk() / "New";
    figures.copy = SecondsOfCopy(source, stage.Disk() / "Copy", Way::Plain);
    sync();
    figures.safeCopy = SecondsOfCopy(source, stage.Disk() / "Safe", Way::Safe);
    figures.added = stage.Add();
    if (FilesBelow(stage.Disk() / "Music") != songs) throw std::runtime_error("files are missing");
    figures.again = stage.Add();
    return figures;
}

void Print(const Figures& f) {
    constexpr double Megabyte = 1024.0 * 1024.0;
    std::cout << fmt::format(
                     "{:>8} {:>8.3f} s {:>8.3f} s {:>8.3f} s {:>6.2f}x {:>8.3f} s "
                     "{:>8.3f} s {:>8.3f} s {:>8.1f}\n",
                     f.songs, f.copy, f.safeCopy, f.added.seconds, f.added.seconds / f.safeCopy,
                     f.added.processor, f.again.seconds, f.again.processor,
                     static_cast<double>(f.added.peakMemory) / Megabyte)
              << std::flush;
}

double Growth(double small, double large, const Figures& first, const Figures& last) {
    return std::log(large / small) /
           std::log(static_cast<double>(last.songs) / static_cast<double>(first.songs));
}

int Main(std::span<char*> arguments) {
    const std::vector<std::size_t> sizes =
        SizesFrom(arguments, "adding_bench [FILES...]", {1'000, 10'000});
    std::cout << fmt::format("{:>8} {:>10} {:>10} {:>10} {:>7} {:>10} {:>10} {:>10} {:>8}\n",
                             "files", "copy", "safe copy", "added", "", "processor", "again",
                             "processor", "peak MB");
    std::vector<Figures> all;
    for (const std::size_t size : sizes) {
        all.push_back(Measure(size));
        Print(all.back());
    }
    const Figures &first = all.front(), &last = all.back();
    if (all.size() > 1) {
        std::cout << fmt::format("growth exponents of processor time: added {:.2f}, again {:.2f}\n",
                                 Growth(first.added.processor, last.added.processor, first, last),
                                 Growth(first.again.processor, last.again.processor, first, last));
    }
    return 0;
}

}  // namespace
}  // namespace quillon::bench

int main(int count, char** arguments) {
    try {
        return quillon::bench::Main(std::span(arguments, static_cast<std::size_t>(count)));
    } catch (const std::exception& error) {
        std::cerr << "adding_bench: " << error.what() << '\n';
        return 2;
    }
}
