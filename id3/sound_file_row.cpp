#include "id3/sound_file_row.h"

#include "id3/temporary_name.h"
#include "platform/basic_text.h"

namespace quillon {

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

}  // namespace quillon
