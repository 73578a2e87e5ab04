#include "id3/track_of_file.h"

#include <vector>

#include "id3/file_names.h"
#include "platform/basic_text.h"
#include "run/run.h"
#include "run/steps.h"

namespace quillon {
namespace {

enum class TrackStep { Read = 1, Find = 2, Change = 7 };

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

TrackRow* FindRowToRename(Library& library, std::string_view path, std::string_view newPath) {
    TrackRow* row = library.FindTrack(path);
    if (row == nullptr) row = library.FindTrack(newPath);
    if (row == nullptr) row = library.FindTrack(TemporaryPath(path));
    return row;
}

bool IsStoredAs(std::string_view soundFile, std::string_view path) {
    return LowerCase(soundFile).ends_with(LowerCase(path));
}

std::string StoredAs(std::string_view soundFile, std::string_view from, std::string_view to) {
    // Letters of the two cases may differ in size, hence the measure in one case.
    const std::size_t before = LowerCase(soundFile).size() - LowerCase(from).size();
    return std::string(soundFile.substr(0, before)).append(to);
}

std::optional<std::int64_t> LengthOf(std::int64_t minutes, std::int64_t seconds) {
    constexpr std::int64_t SecondsAMinute = 60;
    const std::int64_t length = minutes * SecondsAMinute + seconds;
    if ((minutes <= 0 && seconds <= 0) || length <= 0) return std::nullopt;
    return length;
}

std::optional<std::int64_t> LengthOf(const TrackRow& track) {
    return LengthOf(track.minutes.value_or(0), track.seconds.value_or(0));
}

TrackInfo GetID3TrackInfo(Run& run, std::string_view path, std::string_view newPath) {
    TrackInfo info;
    Steps steps(run, "Get ID3 Track Info Error:");
    steps.Concerning(path);
    steps.Try(TrackStep::Read, [&] {
        Library& library = run.TheLibrary();
        TrackRow* const row =
            newPath.empty() ? library.FindTrack(path) : FindRowToRename(library, path, newPath);
        if (row == nullptr) return;
        info.row = row;
        info.track = std::to_string(row->number.Truth().value_or(0));
        if (const auto length = LengthOf(*row)) info.seconds = std::to_string(*length);
    });
    return info;
}

void UpdateForID3Info(Run& run, const ComparedFile& file, TrackRow* known) {
    Steps steps(run, "Update for ID3 Info Error:");
    steps.Concerning(file.path);
    TrackRow* row = nullptr;
    std::vector<FieldValue> changes;
    steps.Try(TrackStep::Find, [&] {
        row = known != nullptr ? known : run.TheLibrary().FindTrack(file.path);
        if (row == nullptr) return;
        const std::int16_t number = IsNumeric(file.track) ? ToInteger(file.track) : std::int16_t{0};
        if (number > 0) row->tagNumber = number;
        changes = WantedChanges(*row, file);
    });
    if (!changes.empty())
        steps.Try(TrackStep::Change, [&] { run.TheLibrary().Change(*row, changes); });
}

}  // namespace quillon
