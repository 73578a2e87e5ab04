#include "id3/update_for_id3_info.h"

#include <cstdint>
#include <vector>

#include "id3/sound_file_row.h"
#include "platform/basic_text.h"
#include "run/run.h"
#include "run/steps.h"

namespace quillon {
namespace {

constexpr int FindStep = 2, ChangeStep = 7;

std::vector<FieldValue> WantedChanges(const TrackRow& row, const ComparedFile& file) {
    constexpr std::int32_t SecondsAMinute = 60;
    std::vector<FieldValue> wanted;
    if (file.newTitle) {
        // What stands before the path stays there.
        if (!row.soundFile.Text().ends_with(file.path)) wanted.push_back({"SoundFile", file.path});
        if (row.title.Text() != *file.newTitle) wanted.push_back({"Title", *file.newTitle});
    }
    if (!LengthOf(row) && IsNumeric(file.seconds)) {
        const std::int32_t seconds = ToLong(file.seconds);
        if (seconds > 0) {
            wanted.push_back({"Minutes", std::int64_t{seconds / SecondsAMinute}});
            wanted.push_back({"Seconds", std::int64_t{seconds % SecondsAMinute}});
        }
    }
    return wanted;
}

}  // namespace

void UpdateForID3Info(Run& run, const ComparedFile& file) {
    Steps steps(run, "Update for ID3 Info Error:");
    steps.Concerning(file.path);
    TrackRow* row = nullptr;
    std::vector<FieldValue> changes;
    steps.Try(FindStep, [&] {
        row = run.TheLibrary().FindTrack(file.path);
        if (row == nullptr) return;
        const std::int16_t number = IsNumeric(file.track) ? ToInteger(file.track) : std::int16_t{0};
        if (number > 0) row->tagNumber = number;
        changes = WantedChanges(*row, file);
    });
    if (!changes.empty()) steps.Try(ChangeStep, [&] { run.TheLibrary().Change(*row, changes); });
}

}  // namespace quillon
