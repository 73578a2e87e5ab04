#include "app/removed_music.h"

#include <algorithm>
#include <array>
#include <span>
#include <string_view>

#include "platform/basic_text.h"
#include "run/log.h"
#include "run/paths.h"
#include "run/sound_files.h"

namespace quillon {
namespace {

constexpr std::array<std::string_view, 4> NoWords{"0", "no", "off", "false"};
constexpr std::array<std::string_view, 5> YesWords{"1", "yes", "on", "true", ""};

bool IsOneOf(std::string_view text, std::span<const std::string_view> words) {
    return std::ranges::any_of(
        words, [text](std::string_view word) { return EqualIgnoringCase(text, word); });
}

bool LiesIn(std::string_view folder, std::string_view path) {
    if (folder.empty()) return false;
    const std::string beginning = LowerCase(AddBackslash(Replace(folder, "/", "\\")));
    return LowerCase(path).starts_with(beginning);
}

bool IsMusic(const Run& run, std::string_view path) {
    if (!IsSoundFile(path)) return false;
    return LiesIn(run.settings.LibraryRoot, path) ||
           std::ranges::any_of(run.LibraryFolders, [path](const FolderEntry& folder) {
               return LiesIn(folder.path, path);
           });
}

}  // namespace

RemovedMusicSetting ReadRemovedMusicSetting(HostFolder& host) {
    std::string text = host.GetINISetting("Removed", "Keep", "1", HostSettingsFile);
    const bool no = IsOneOf(text, NoWords);
    const bool understood = no || IsOneOf(text, YesWords);
    return {.text = std::move(text), .keep = !no, .understood = understood};
}

std::filesystem::path RemovedMusicFolder(const HostFolder& host) {
    return host.Folder() / "Removed";
}

PortableFiles::TakeOver KeepRemovedMusic(Run& run, const HostFolder& host, RemovedFiles& removed) {
    return [&run, &host, &removed](const std::string& local, const WindowsPath& shown) {
        const std::string path = shown.Text();
        if (!IsMusic(run, path)) return false;
        const std::filesystem::path kept = removed.Take(local, shown);
        WriteLog(run, LogSource,
                 path + " is kept as " + kept.lexically_relative(host.Folder()).string());
        return true;
    };
}

std::optional<std::string> PlaceOfRemovedMusic(const Run& run, LocalHost& local,
                                               RemovedFiles& removed, bool keeps,
                                               std::string_view path) {
    if (!IsMusic(run, path)) return std::nullopt;
    if (!keeps) return "";
    const std::filesystem::path place = removed.PlaceFor(local.files.AsOnDisk(path));
    return place.lexically_relative(local.host.Folder()).generic_string();
}

}  // namespace quillon
