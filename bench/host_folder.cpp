#include "bench/host_folder.h"

#include <ctime>
#include <fmt/format.h>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <utility>
#include <vector>

namespace quillon::bench {
namespace fs = std::filesystem;

MusicTree::MusicTree(std::size_t tracks, FileNames names, std::size_t tracksAnAlbum)
    : tracks_(tracks) {
    MakeLibrary(Root(), tracks, names, tracksAnAlbum);
}

double MusicTree::SecondsOfWalk() const {
    const std::clock_t start = std::clock();
    const WalkResult seen = BareWalk(Root());
    const std::clock_t end = std::clock();
    if (seen.files != tracks_)
        throw std::runtime_error("the walk has not found the files there were");
    return static_cast<double>(end - start) / CLOCKS_PER_SEC;
}

HostFolder::HostFolder(std::string program, const fs::path& music) : program_(std::move(program)) {
    RunToSuccess({program_, "init", Path().string(), "--music", music.string()});
    // The aims are those of a run that reads neither sounds nor pictures, and tags of new files
    // only.
    Replace("host.ini", "\nFollowMovedFiles=", "0");
    Replace("host.ini", "\nTrackArtists=", "0");
    Replace("host.ini", "\nFolderImages=", "0");
    SetTags("v1", "v1");
}

void HostFolder::Set(std::string_view key, std::string_view value) const {
    Replace("Quillon.ini", fmt::format("\n{}=", key), value);
}

void HostFolder::SetTags(std::string_view read, std::string_view write) const {
    Replace("host.ini", "\nRead=", read);
    Replace("host.ini", "\nWrite=", write);
}

void HostFolder::Replace(std::string_view file, std::string_view begin,
                         std::string_view value) const {
    const fs::path settings = Path() / file;
    std::ifstream in(settings, std::ios::binary);
    std::string text{std::istreambuf_iterator<char>(in), {}};
    const std::size_t line = text.find(begin);
    if (line == std::string::npos) throw std::runtime_error(fmt::format("no setting {}", begin));
    const std::size_t from = line + begin.size();
    text.replace(from, text.find_first_of("\r\n", from) - from, value);
    std::ofstream(settings, std::ios::binary) << text;
}

void HostFolder::AddCovers(const fs::path& music) const {
    for (const fs::directory_entry& artist : fs::directory_iterator(music)) {
        for (const fs::directory_entry& album : fs::directory_iterator(artist)) {
            std::ofstream(Path() / "Covers" /
                          fmt::format("{} - {}.jpg", artist.path().filename().string(),
                                      album.path().filename().string()))
                << "picture";
        }
    }
}

Usage HostFolder::Preview() const {
    constexpr int ThereAreChanges = 1;
    const Usage used = RunProcess({program_, "preview", "--host", Path().string()});
    if (used.exitStatus > ThereAreChanges) throw std::runtime_error("a preview has failed");
    return used;
}

Usage HostFolder::Run(const Surroundings& surroundings, const std::string& view) const {
    const Usage used =
        RunToSuccess({program_, "run", "--host", Path().string(), "--view", view}, surroundings);
    std::vector<fs::path> left{Path() / "host.log"};
    for (const fs::directory_entry& entry : fs::directory_iterator(Path())) {
        const bool isCopy =
            entry.path().filename().string().find("_Copy Dated_") != std::string::npos;
        // Folders stay: where thousands of files have just been deleted, some file systems take
        // seconds to make as many new ones.
        if (isCopy && entry.is_regular_file()) left.push_back(entry.path());
    }
    for (const fs::path& path : left)
        fs::remove_all(path);
    return used;
}

}  // namespace quillon::bench
