#include "id3/update_for_id3_info.h"

#include <cstdint>
#include <memory>
#include <utility>
#include <vector>

#include "database/sql.h"
#include "database/track_numbers.h"
#include "id3/sound_file_row.h"
#include "platform/basic_text.h"
#include "run/run.h"
#include "run/steps.h"

namespace quillon {
namespace {

constexpr int FindStep = 2, ChangeStep = 7;

/// Values by the fields that are to hold them.
using Changes = std::vector<std::pair<std::string_view, Value>>;

Changes WantedValues(const ComparedFile& file) {
    constexpr std::int32_t SecondsAMinute = 60;
    Changes wanted;
    if (file.newTitle) {
        wanted.emplace_back("SoundFile", file.path);
        wanted.emplace_back("Title", *file.newTitle);
    }
    if (IsNumeric(file.track)) wanted.emplace_back("Track", std::int64_t{ToInteger(file.track)});
    if (IsNumeric(file.seconds)) {
        const std::int32_t seconds = ToLong(file.seconds);
        if (seconds >= 0) {
            wanted.emplace_back("Minutes", std::int64_t{seconds / SecondsAMinute});
            wanted.emplace_back("Seconds", std::int64_t{seconds % SecondsAMinute});
        }
    }
    return wanted;
}

/// Puts the rows of the song on the one whose file this is; whether there is one.
bool FindRowOf(const ComparedFile& file, RecordSet& rows) {
    for (; !rows.IsEof(); rows.MoveNext()) {
        if (IsStoredAs(rows.Text("SoundFile"), file.path)) return true;
    }
    return false;
}

}  // namespace

void UpdateForID3Info(Run& run, RecordSet& tracks, const ComparedFile& file) {
    Steps steps(run, "Update for ID3 Info Error:");
    steps.Concerning(file.path);
    std::int64_t id = 0;
    Changes changes;
    steps.Try(FindStep, [&] {
        const std::unique_ptr<RecordSet> rows = run.connection->Query(
            "SELECT Tracks.ID, Tracks.SoundFile, Tracks.Title, Tracks.Track, Tracks.Minutes, "
            "Tracks.Seconds FROM Albums INNER JOIN Tracks ON Albums.CDJID = Tracks.CDJID "
            "WHERE (((Albums.Artist)=" +
            Quoted(file.artist) + ") AND ((Albums.Title)=" + Quoted(file.album) +
            ") AND ((Tracks.Title)=" + Quoted(file.song) + ") AND ((Albums.Player)=1001))");
        if (!FindRowOf(file, *rows)) return;
        id = rows->Integer("ID");
        for (auto& [field, value] : WantedValues(file)) {
            if (rows->Get(field) != value) changes.emplace_back(field, std::move(value));
        }
    });
    if (changes.empty()) return;
    const bool changed = steps.Try(ChangeStep, [&] {
        if (!MoveToId(tracks, id)) return;
        for (const auto& [field, value] : changes)
            tracks.Set(field, value);
        tracks.Update();
    });
    // Else the next row's values would join what is left of this one's.
    if (!changed) steps.Try(ChangeStep, [&tracks] { tracks.CancelUpdate(); });
}

}  // namespace quillon
