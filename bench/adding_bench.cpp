// Measures how long adding files to a library takes beside bare copies of the same files.

#include <charconv>
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
#include "bench/temporary_folder.h"

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

enum class Durable { No, Yes };

/// The yardsticks: copies of the tree, at the system's leisure or each on the disk before the next
/// begins, as a copy that must survive a power cut is.
double SecondsOfCopy(const fs::path& from, const fs::path& to, Durable durable) {
    const auto start = std::chrono::steady_clock::now();
    fs::create_directories(to);
    for (const fs::directory_entry& entry : fs::recursive_directory_iterator(from)) {
        const fs::path target = to / fs::relative(entry.path(), from);
        if (entry.is_directory()) {
            fs::create_directory(target);
        } else {
            fs::copy_file(entry.path(), target);
            if (durable == Durable::No) continue;
            BringToDisk(target);
            BringToDisk(target.parent_path());
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
        Run({QUILLON_PROGRAM, "db", "create", (Disk() / "Data" / "jukebox.mdb").string()});
    }

    fs::path Disk() const { return folder_.Path() / "disk"; }

    Usage Add() const {
        return Run({QUILLON_PROGRAM, "run", "--host", folder_.Path().string(), "--view", "plain"});
    }

  private:
    static Usage Run(const std::vector<std::string>& command) {
        const Usage used = RunProcess(command);
        if (used.exitStatus == 0) return used;
        throw std::runtime_error(fmt::format("{} ends with {}", command[1], used.exitStatus));
    }

    TemporaryFolder folder_;
};

struct Figures {
    std::size_t songs = 0;
    double copy = 0, durableCopy = 0, added = 0, again = 0;  ///< seconds
    std::size_t memory = 0;                                  ///< bytes
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
    figures.copy = SecondsOfCopy(source, stage.Disk() / "Copy", Durable::No);
    sync();
    figures.durableCopy = SecondsOfCopy(source, stage.Disk() / "Durable", Durable::Yes);
    const Usage added = stage.Add();
    if (FilesBelow(stage.Disk() / "Music") != songs) throw std::runtime_error("files are missing");
    figures.added = added.seconds;
    figures.memory = added.peakMemory;
    figures.again = stage.Add().seconds;
    return figures;
}

void Print(const Figures& f) {
    constexpr double Megabyte = 1024.0 * 1024.0;
    std::cout << fmt::format(
                     "{:>8} {:>9.3f} s {:>11.3f} s {:>9.3f} s {:>7.2f}x {:>9.3f} s {:>9.1f}\n",
                     f.songs, f.copy, f.durableCopy, f.added, f.added / f.durableCopy, f.again,
                     static_cast<double>(f.memory) / Megabyte)
              << std::flush;
}

double Growth(double small, double large, const Figures& first, const Figures& last) {
    return std::log(large / small) /
           std::log(static_cast<double>(last.songs) / static_cast<double>(first.songs));
}

int Main(std::span<char*> arguments) {
    std::vector<std::size_t> sizes;
    for (const std::string_view argument : arguments.subspan(1)) {
        std::size_t size = 0;
        const char* const end = argument.data() + argument.size();
        if (std::from_chars(argument.data(), end, size).ptr != end || size == 0)
            throw std::invalid_argument("usage: quillon_adding_bench [FILES...]");
        sizes.push_back(size);
    }
    if (sizes.empty()) sizes = {1'000, 10'000};
    std::cout << fmt::format("{:>8} {:>11} {:>13} {:>11} {:>8} {:>11} {:>9}\n", "files", "copy",
                             "durable copy", "added", "", "again", "peak MB");
    std::vector<Figures> all;
    for (const std::size_t size : sizes) {
        all.push_back(Measure(size));
        Print(all.back());
    }
    const Figures &first = all.front(), &last = all.back();
    if (all.size() > 1) {
        std::cout << fmt::format("growth exponents: added {:.2f}, again {:.2f}\n",
                                 Growth(first.added, last.added, first, last),
                                 Growth(first.again, last.again, first, last));
    }
    return 0;
}

}  // namespace
}  // namespace quillon::bench

int main(int count, char** arguments) {
    try {
        return quillon::bench::Main(std::span(arguments, static_cast<std::size_t>(count)));
    } catch (const std::exception& error) {
        std::cerr << "quillon_adding_bench: " << error.what() << '\n';
        return 2;
    }
}
