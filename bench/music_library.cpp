#include "bench/music_library.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <ctime>
#include <dirent.h>
#include <fcntl.h>
#include <fmt/format.h>
#include <random>
#include <stdexcept>
#include <string>
#include <string_view>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

namespace quillon::bench {

namespace {

namespace fs = std::filesystem;

constexpr std::size_t TagSize = 128;
constexpr std::size_t AlbumsEach = 4;
constexpr std::size_t FrameSize = 104;
constexpr std::time_t FirstTime = 1'500'000'000;
constexpr unsigned TimeSpan = 200'000'000;

constexpr std::array<std::string_view, 16> Words = {
    "Amber", "Bell",  "Cloud", "Dune",  "Ember", "Fjörd", "Grove", "Harbor",
    "Île",   "Jolly", "Kite",  "Lunar", "Mist",  "Night", "Oak",   "Pier"};

/// Closes a file descriptor at the end of its scope.
class Descriptor {
  public:
    explicit Descriptor(int number) : number_(number) {
        if (number < 0) throw std::runtime_error("a file or folder cannot be opened");
    }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    ~Descriptor() { close(number_); }
    int Number() const { return number_; }

  private:
    int number_;
};

std::string RandomName(std::mt19937& random, std::size_t words) {
    std::string name;
    for (std::size_t i = 0; i < words; ++i) {
        if (i > 0) name += ' ';
        name += Words[random() % Words.size()];
    }
    return name;
}

/// The text in the code page of tags; the names here have no letters beyond U+00FF.
std::string TagText(std::string_view text) {
    std::string bytes;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const bool isPair = text[i] == '\xC3';
        bytes += isPair ? static_cast<char>(text[++i] + 0x40) : text[i];
    }
    return bytes;
}

void PutField(std::string& tag, std::size_t offset, std::size_t size, std::string_view utf8) {
    const std::string text = TagText(utf8);
    tag.replace(offset, std::min(size, text.size()), text, 0, size);
}

std::string SoundFile(std::string_view artist, std::string_view album, std::string_view title,
                      unsigned track) {
    std::string content("\xFF\xFB\x10\xC4", 4);
    content.resize(FrameSize, '\0');
    std::string tag(TagSize, '\0');
    PutField(tag, 0, 3, "TAG");
    PutField(tag, 3, 30, title);
    PutField(tag, 33, 30, artist);
    PutField(tag, 63, 30, album);
    PutField(tag, 97, 28, fmt::format("Length='{}'", 120 + 7 * track));
    tag[126] = static_cast<char>(track);
    tag[127] = 17;
    return content + tag;
}

void WriteFile(const fs::path& path, std::string_view content, std::time_t modified) {
    const Descriptor file(open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644));
    if (write(file.Number(), content.data(), content.size()) !=
        static_cast<ssize_t>(content.size())) {
        throw std::runtime_error("cannot write " + path.string());
    }
    const timespec time{modified, 0};
    const std::array<timespec, 2> times{time, time};
    if (futimens(file.Number(), times.data()) != 0) {
        throw std::runtime_error("cannot set the time of " + path.string());
    }
}

void ReadTail(int folder, const char* name, WalkResult& result) {
    const Descriptor file(openat(folder, name, O_RDONLY | O_CLOEXEC));
    struct stat facts{};
    if (fstat(file.Number(), &facts) != 0) return;
    std::array<std::uint8_t, TagSize> tail{};
    const off_t start = std::max<off_t>(facts.st_size - off_t{TagSize}, 0);
    const ssize_t count = pread(file.Number(), tail.data(), tail.size(), start);
    for (ssize_t i = 0; i < count; ++i)
        result.byteSum += tail[static_cast<std::size_t>(i)];
    ++result.files;
}

void WalkFolder(int parent, const char* name, WalkResult& result) {
    const int number = openat(parent, name, O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    DIR* folder = number < 0 ? nullptr : fdopendir(number);
    if (folder == nullptr) throw std::runtime_error("cannot list a folder");
    while (const dirent* entry = readdir(folder)) {
        const std::string_view entryName = entry->d_name;
        if (entryName == "." || entryName == "..") continue;
        if (entry->d_type == DT_DIR) {
            WalkFolder(number, entry->d_name, result);
        } else {
            ReadTail(number, entry->d_name, result);
        }
    }
    closedir(folder);
}

}  // namespace

void MakeLibrary(const fs::path& root, std::size_t tracks, FileNames names,
                 std::size_t tracksAnAlbum) {
    std::mt19937 random(static_cast<std::mt19937::result_type>(tracks));
    std::size_t made = 0;
    for (std::size_t artist = 1; made < tracks; ++artist) {
        const std::string artistName = fmt::format("{} {}", RandomName(random, 2), artist);
        for (std::size_t album = 1; album <= AlbumsEach && made < tracks; ++album) {
            const std::string albumName = fmt::format("{} {}", RandomName(random, 3), album);
            const fs::path folder = root / artistName / albumName;
            fs::create_directories(folder);
            const std::size_t wanted =
                tracksAnAlbum == VariedAlbums ? 6 + random() % 13 : tracksAnAlbum;
            for (unsigned track = 1; track <= wanted && made < tracks; ++track, ++made) {
                std::string title = RandomName(random, 1 + random() % 4);
                const bool byArtist = names == FileNames::ByArtist;
                if (byArtist) title = fmt::format("{:02} {}", track, title);
                WriteFile(folder / (byArtist ? fmt::format("{} - {}.mp3", artistName, title)
                                             : fmt::format("{:02} - {}.mp3", track, title)),
                          SoundFile(artistName, albumName, title, track),
                          FirstTime + static_cast<std::time_t>(random() % TimeSpan));
            }
        }
    }
}

WalkResult BareWalk(const fs::path& root) {
    WalkResult result;
    WalkFolder(AT_FDCWD, root.c_str(), result);
    return result;
}

}  // namespace quillon::bench
