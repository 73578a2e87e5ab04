#include "playlists/m3u.h"

#include <memory>
#include <utility>

#include "database/sql.h"
#include "platform/basic_text.h"
#include "platform/database.h"
#include "run/fast_string.h"
#include "run/run.h"
#include "run/steps.h"

namespace quillon {
namespace {

std::optional<std::int64_t> WholeField(const RecordSet& row, std::string_view field) {
    if (IsNull(row.Get(field))) return std::nullopt;
    return row.Integer(field);
}

std::optional<M3uSong> FindSong(Connection& connection, std::string_view cdjid,
                                std::string_view track) {
    const std::unique_ptr<RecordSet> row = connection.Query(
        "SELECT Title, Artist, Minutes, Seconds, SoundFile FROM Tracks WHERE cdjid=" +
        FilterQuoted(cdjid) + " AND Track=" + std::string(track));
    if (row->IsEmpty()) return std::nullopt;
    const std::string soundFile = row->Text("SoundFile");
    // Players take the line behind "#EXTINF:" for a file, whatever it is.
    if (soundFile.empty()) return std::nullopt;
    FastString line;
    line.Add("#EXTINF:");
    line.Add(
        std::to_string(LengthInSeconds(WholeField(*row, "Minutes"), WholeField(*row, "Seconds"))));
    line.Add(",");
    line.Add(row->Text("Artist"));
    line.Add(" - ");
    line.Add(row->Text("Title"));
    return M3uSong{line.value(), soundFile};
}

}  // namespace

std::int16_t LengthInSeconds(std::optional<std::int64_t> minutes,
                             std::optional<std::int64_t> seconds) {
    constexpr std::int16_t Unknown = 360;
    if (!minutes || !seconds || *minutes <= 0) return Unknown;
    const double length = 60.0 * static_cast<double>(*minutes);
    return ToInteger(*seconds > 0 ? length + static_cast<double>(*seconds) : length);
}

std::string M3uName(std::string_view name) {
    constexpr std::string_view Pla = ".pla", M3u = ".m3u";
    std::string result;
    for (std::size_t at = 0; at < name.size();) {
        const bool found = EqualIgnoringCase(name.substr(at, Pla.size()), Pla);
        result += found ? M3u : name.substr(at, 1);
        at += found ? Pla.size() : 1;
    }
    return result;
}

std::string M3u8Name(std::string_view m3uName) {
    constexpr std::string_view M3u = ".m3u";
    const bool isM3u = EqualIgnoringCase(Right(m3uName, M3u.size()), M3u);
    return std::string(m3uName) + (isM3u ? "8" : ".m3u8");
}

void WriteM3uTrack(Run& run, std::vector<M3uSong>& songs, std::string_view cdjid,
                   std::string_view track) {
    Steps steps(run,
                "WriteM3uTrack cdjid=" + std::string(cdjid) + ", tracknum=" + std::string(track));
    steps.Try([&] {
        if (std::optional<M3uSong> song = FindSong(*run.connection, cdjid, track))
            songs.push_back(std::move(*song));
    });
}

}  // namespace quillon
