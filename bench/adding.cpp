#include "bench/adding.h"

#include <algorithm>
#include <chrono>
#include <fcntl.h>
#include <fmt/format.h>
#include <fstream>
#include <stdexcept>
#include <string_view>
#include <unistd.h>

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

void CopyTree(const fs::path& from, const fs::path& to, NewFiles::Way way) {
    fs::create_directories(to);
    for (const fs::directory_entry& entry : fs::recursive_directory_iterator(from)) {
        const fs::path target = to / fs::relative(entry.path(), from);
        if (entry.is_directory()) {
            fs::create_directory(target);
        } else if (way == NewFiles::Way::Plain) {
            fs::copy_file(entry.path(), target);
        } else {
            CopySafely(entry.path(), target);
        }
    }
}

std::size_t FilesBelow(const fs::path& folder) {
    std::size_t files = 0;
    for (const fs::directory_entry& entry : fs::recursive_directory_iterator(folder))
        files += entry.is_regular_file() ? 1U : 0U;
    return files;
}

/// Drive Z is the whole file system.
std::string WindowsPath(const fs::path& path) {
    std::string text = "Z:" + path.string();
    std::ranges::replace(text, '/', '\\');
    return text;
}

}  // namespace

NewFiles::NewFiles(std::size_t songs) : songs_(songs) {
    MakeNewFiles(Root(), songs);
    sync();
}

double NewFiles::SecondsOfCopy(Way way) {
    const fs::path copy = MakeFolder();
    const auto start = std::chrono::steady_clock::now();
    CopyTree(Root(), copy, way);
    const double seconds = SecondsSince(start);
    sync();
    return seconds;
}

fs::path NewFiles::MakeFolder() {
    return folder_.MakeFolder(fmt::format("{}", ++folders_));
}

AddingStage::AddingStage(const std::string& program, NewFiles& files)
    : songs_(files.Songs()), music_(files.MakeFolder()), host_(program, music_) {
    host_.Set("Reconcile", "0");
    host_.Set("AddFiles", "1");
    host_.Set("FromFilesPath", WindowsPath(files.Root()));
    sync();
}

Usage AddingStage::Add() const {
    const Usage used = host_.Run();
    if (FilesBelow(music_) != songs_) throw std::runtime_error("files are missing");
    return used;
}

}  // namespace quillon::bench
