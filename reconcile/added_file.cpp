#include "reconcile/added_file.h"

#include <algorithm>
#include <cctype>
#include <optional>

#include "platform/basic_text.h"
#include "platform/failure.h"
#include "platform/windows_name.h"
#include "platform/windows_path.h"
#include "run/disc_folders.h"
#include "run/paths.h"

namespace quillon {
namespace {

std::string WithoutEnding(std::string_view text) {
    constexpr std::string_view Ending = ".mp3";
    const auto same = [](char left, char right) {
        return std::tolower(static_cast<unsigned char>(left)) == right;
    };
    std::string rest;
    while (true) {
        const auto found =
            std::search(text.begin(), text.end(), Ending.begin(), Ending.end(), same);
        rest.append(text.begin(), found);
        if (found == text.end()) return rest;
        text.remove_prefix(static_cast<std::size_t>(found - text.begin()) + Ending.size());
    }
}

void ReplaceByField(std::string& text, std::string_view field) {
    if (const std::string_view known = Trim(field); !known.empty()) text = known;
}

/// Dots and blanks alone would make a file that is hard to see and a row without a name.
bool CanBeTitle(std::string_view title) {
    return title.find_first_not_of(". ") != std::string_view::npos &&
           IsWindowsName(std::string(title) + ".mp3");
}

[[noreturn]] void Refuse(std::string_view what, std::string_view name, std::string_view path) {
    throw Failure(FailureNumber::BadFileName,
                  std::string(what) + " \"" + std::string(name) + "\" of " + std::string(path));
}

}  // namespace

std::string TitleInPath(std::string_view path) {
    const std::size_t dash = path.rfind('-');
    if (dash == std::string_view::npos) return WithoutEnding(path);
    return WithoutEnding(Trim(path.substr(dash + 1)));
}

std::string TitleInName(std::string_view path) {
    return WithoutEnding(Trim(path.substr(path.rfind('\\') + 1)));
}

void ReadTagInto(AddedFile& file, const Tag& tag, const FindGenre& findGenre) {
    if (!tag.IsThere()) return;
    const Tag recorded = AsRecorded(tag);
    ReplaceByField(file.artist, recorded.artist);
    ReplaceByField(file.album, recorded.album);
    ReplaceByField(file.title, recorded.song);
    if (IsNumeric(recorded.track)) file.track = ToInteger(recorded.track);
    if (std::string genre = findGenre(recorded.genre); !genre.empty())
        file.genre = std::move(genre);
}

std::string DiscFolderOf(std::string_view path, const Tag& tag) {
    constexpr double First = 1, Most = 99;
    const std::string_view folder = LastName(ParentFolder(path));
    if (DiscOfFolder(folder)) return std::string(folder);
    const std::optional<double> disc = ToNumber(tag.disc);
    if (!disc || *disc <= First || *disc > Most) return "";
    return "CD" + std::to_string(static_cast<int>(*disc));
}

void RequireFileNames(const AddedFile& file, std::string_view path) {
    if (!IsWindowsName(file.artist)) Refuse("artist", file.artist, path);
    if (!IsWindowsName(file.album)) Refuse("album", file.album, path);
    if (!CanBeTitle(file.title)) Refuse("title", file.title, path);
}

}  // namespace quillon
