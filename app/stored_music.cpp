#include "app/stored_music.h"

#include <map>
#include <string_view>
#include <system_error>

#include "database/schema.h"

namespace quillon {
namespace {

// Enough to be sure of, little enough for a library of a million tracks that lie elsewhere.
constexpr std::size_t MostTracksLookedAt = 500;

/// What of `soundFile` stands before the part that exists below `music`.
std::optional<std::string> PartBefore(const std::filesystem::path& music,
                                      std::string_view soundFile) {
    std::size_t start = soundFile.find('\\', soundFile.starts_with("\\\\") ? 2 : 0);
    for (; start != std::string_view::npos; start = soundFile.find('\\', start + 1)) {
        std::string rest(soundFile.substr(start + 1));
        if (rest.empty()) break;
        for (char& c : rest)
            if (c == '\\') c = '/';
        std::error_code ignored;
        if (std::filesystem::is_regular_file(music / rest, ignored))
            return std::string(soundFile.substr(0, start));
    }
    return std::nullopt;
}

}  // namespace

std::optional<std::string> StoredMusicFolder(jet::Database& database,
                                             const std::filesystem::path& music) {
    const auto tracks = database.Query(
        "SELECT Tracks.SoundFile FROM Tracks INNER JOIN Albums ON Tracks.CDJID = Albums.CDJID "
        "WHERE Albums.Player=" +
        std::to_string(OwnedPlayer) + " AND Tracks.SoundFile Is Not Null");
    std::map<std::string, std::size_t> votes;
    std::size_t found = 0;
    for (std::size_t i = 0; i < MostTracksLookedAt && !tracks->IsEof(); ++i, tracks->MoveNext()) {
        const jet::Value soundFile = tracks->Get(0);
        const auto* const text = std::get_if<std::string>(&soundFile);
        if (text == nullptr) continue;
        if (const auto before = PartBefore(music, *text)) {
            ++votes[*before];
            ++found;
        }
    }
    for (const auto& [folder, count] : votes)
        if (count * 2 > found) return folder;
    return std::nullopt;
}

}  // namespace quillon
