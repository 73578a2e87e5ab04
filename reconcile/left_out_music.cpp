#include "reconcile/left_out_music.h"

#include <algorithm>

#include "run/paths.h"
#include "run/sound_files.h"

namespace quillon {
namespace {

/// Nobody nests music deeper than that; a disk whose folders lead in circles does.
constexpr int MostLevels = 16;

bool IsMusic(const std::string& name) {
    return IsSoundFile(name) || IsOtherAudio(name);
}

/// Hidden folders, and those in which a network drive keeps its pictures: one for each song.
bool IsSystemFolder(const std::string& name) {
    return name.starts_with('.') || name == "@eaDir";
}

}  // namespace

void LeftOutMusic::NoteLoose(const std::string& folder, std::span<const std::string> names) {
    for (const std::string& name : names) {
        if (IsMusic(name)) found_.Note(LeftOutFor::NoAlbum, AddBackslash(folder) + name);
    }
}

void LeftOutMusic::NoteOther(const std::string& folder, const std::string& name) {
    if (IsOtherAudio(name)) found_.Note(LeftOutFor::OtherType, AddBackslash(folder) + name);
}

void LeftOutMusic::NoteFlat(const std::string& folder, const std::string& name) {
    if (!IsSoundFile(name)) return NoteOther(folder, name);
    if (name.find(FlatSeparator) == std::string::npos) NoteLoose(folder, {&name, 1});
}

void LeftOutMusic::NoteDeeper(const std::string& folder, std::span<const std::string> names) {
    for (const std::string& name : names) {
        if (!IsSystemFolder(name)) Descend(AddBackslash(folder) + name, 1);
    }
}

void LeftOutMusic::Descend(const std::string& folder, int depth) {
    FolderNames names = files_.NamesIn(folder);
    std::sort(names.folders.begin(), names.folders.end());
    const auto music = std::count_if(names.files.begin(), names.files.end(), IsMusic);
    if (music > 0) found_.Note(LeftOutFor::DeeperFolder, folder, static_cast<std::size_t>(music));
    if (depth == MostLevels) return;
    for (const std::string& name : names.folders) {
        if (!IsSystemFolder(name))
            Descend(std::string(folder).append("\\").append(name), depth + 1);
    }
}

}  // namespace quillon
