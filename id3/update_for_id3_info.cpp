#include "id3/update_for_id3_info.h"

#include <cstdint>
#include <string_view>
#include <utility>
#include <vector>

#include "database/move_to_id.h"
#include "id3/sound_file_row.h"
#include "platform/basic_text.h"
#include "run/run.h"
#include "run/steps.h"

namespace quillon {
namespace {

constexpr int FindStep = 2, ChangeStep = 7;

/// Values by the fields that are to hold them.
using Changes = std::vector<std::pair<std::string_view, Value>>;

Changes WantedChanges(const SoundFileRow& row, const ComparedFile& file) {
    constexpr std::int32_t SecondsAMinute = 60;
    Changes wanted;
    if (file.newTitle) {
        // What stands before the path stays there.
        if (!row.soundFile.ends_with(file.path)) wanted.emplace_back("SoundFile", file.path);
        if (row.title != *file.newTitle) wanted.emplace_back("Title", *file.newTitle);
    }
    if (!row.Length() && IsNumeric(file.seconds)) {
        const std::int32_t seconds = ToLong(file.seconds);
        if (seconds > 0) {
            wanted.emplace_back("Minutes", std::int64_t{seconds / SecondsAMinute});
            wanted.emplace_back("Seconds", std::int64_t{seconds % SecondsAMinute});
        }
    }
    return wanted;
}

}  // namespace

void UpdateForID3Info(Run& run, RecordSet& tracks, const ComparedFile& file) {
    Steps steps(run, "Update for ID3 Info Error:");
    steps.Concerning(file.path);
    std::int64_t id = 0;
    Changes changes;
    steps.Try(FindStep, [&] {
        const std::optional<SoundFileRow> row = FindSoundFileRow(*run.connection, file.path);
        if (!row) return;
        id = row->id;
        const std::int16_t number = IsNumeric(file.track) ? ToInteger(file.track) : std::int16_t{0};
        if (number > 0) run.numbersOfTags[id] = number;
        changes = WantedChanges(*row, file);
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
