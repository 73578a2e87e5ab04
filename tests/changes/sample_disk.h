#pragma once

#include <algorithm>
#include <array>
#include <cstdint>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "platform/portable/local_file.h"
#include "platform/portable/portable_files.h"
#include "tests/outside/file_marks.h"
#include "tests/outside/temporary_folder.h"

namespace quillon {

constexpr std::time_t LongAgo = 1'500'000'000;

/// A folder as drive D: with some music, playlists and an empty folder.
struct Disk {
    Disk() : resolver(Drives()), files(resolver, [](LogKind, const std::string&) {}) {
        folder.MakeFile("Music/Abba/Gold/01 One.mp3", "sound of one" + std::string(128, 't'));
        folder.MakeFile("Music/Abba/Gold/02 Two.mp3", "sound of two");
        folder.MakeFile("Music/Abba/cover.jpg", "image");
        folder.MakeFile("Music/Zappa/x.mp3", "");
        folder.MakeFile("Lists/a.pla", "one\r\ntwo\nlast");
        folder.MakeFolder("Empty");
        std::time_t time = LongAgo;
        std::vector<std::filesystem::path> all;
        for (const auto& entry : std::filesystem::recursive_directory_iterator(folder.Path()))
            all.push_back(entry.path());
        std::ranges::sort(all);
        for (const std::filesystem::path& path : all)
            outside::SetModified(path, time += 60);
    }

    DriveTable Drives() const {
        DriveTable drives(folder.Path());
        drives.Map("D", folder.Path());
        return drives;
    }

    outside::TemporaryFolder folder;
    PathResolver resolver;
    PortableFiles files;
};

/// Everything about a folder of the disk, the times of folders included.
inline std::string SeenOnDisk(const std::filesystem::path& folder) {
    std::vector<std::filesystem::path> all{folder};
    for (const auto& entry : std::filesystem::recursive_directory_iterator(folder))
        all.push_back(entry.path());
    std::ranges::sort(all);
    std::ostringstream seen;
    for (const std::filesystem::path& path : all) {
        const auto facts = FactsOfLink(path.string());
        if (!facts) throw std::runtime_error("not there: " + path.string());
        seen << path << ' ' << facts->identity.number << ' ' << facts->size << ' '
             << static_cast<int>(facts->kind) << ' ' << facts->rights << ' '
             << facts->modified.InNanoseconds() << ' ' << facts->changed.InNanoseconds() << '\n';
        if (std::filesystem::is_regular_file(path))
            seen << std::ifstream(path, std::ios::binary).rdbuf();
    }
    return std::move(seen).str();
}

inline std::string TimeText(const DateTime& time) {
    return SortableDateTimeText(time).starts_with("2017") ? SortableDateTimeText(time) : "now";
}

inline std::string BytesOf(Files& files, const std::string& path) {
    const auto reader = files.OpenBinary(path);
    std::string bytes;
    // Not all at once, so that pieces meet somewhere.
    for (auto piece = reader->Read(7); !piece.empty(); piece = reader->Read(7))
        bytes.append(piece.begin(), piece.end());
    EXPECT_EQ(bytes.size(), reader->Size());
    return bytes;
}

inline std::string LinesOf(Files& files, const std::string& path) {
    const auto reader = files.OpenText(path);
    std::string lines;
    while (!reader->AtEndOfStream())
        lines += '[' + reader->ReadLine() + ']';
    return lines;
}

inline std::string Joined(std::vector<std::string> names) {
    std::ranges::sort(names);
    std::string text;
    for (const std::string& name : names)
        text += name + ", ";
    return text;
}

/// All that can be asked of files below a folder.
inline void Describe(Files& files, const std::string& folder, std::ostream& out) {
    const Listing<FileEntry> inside = files.FilesIn(folder);
    const Listing<FolderEntry> folders = files.SubFolders(folder);
    const FolderNames names = files.NamesIn(folder);
    out << folder << ": other than files " << Joined(inside.others) << "than folders "
        << Joined(folders.others) << "names " << Joined(names.folders) << "and "
        << Joined(names.files) << '\n';
    for (const FileEntry& file : inside) {
        const FileEntry same = files.GetFile(file.path);
        EXPECT_EQ(same.path, file.path);
        EXPECT_EQ(same.size, file.size);
        EXPECT_EQ(same.name, file.name);
        EXPECT_TRUE(files.FileExists(file.path));
        EXPECT_FALSE(files.FolderExists(file.path));
        out << file.path << ' ' << file.name << ' ' << file.size << ' ' << TimeText(file.modified)
            << ' ' << BytesOf(files, file.path) << ' ' << LinesOf(files, file.path) << '\n';
    }
    for (const FolderEntry& entry : folders) {
        EXPECT_TRUE(files.FolderExists(entry.path));
        Describe(files, entry.path, out);
    }
}

inline std::string Description(Files& files) {
    std::ostringstream out;
    Describe(files, "D:\\", out);
    return std::move(out).str();
}

}  // namespace quillon
