#include "id3/sound_file_row.h"

#include <memory>

#include "database/sql.h"
#include "id3/temporary_name.h"
#include "platform/basic_text.h"

namespace quillon {

std::optional<std::int64_t> SoundFileRow::Length() const {
    return LengthOf(minutes, seconds);
}

std::optional<SoundFileRow> FindSoundFileRow(Connection& connection, std::string_view path) {
    const std::unique_ptr<RecordSet> found = connection.Query(
        "SELECT Tracks.ID, Tracks.SoundFile, Tracks.Title, Tracks.Track, Tracks.Minutes, "
        "Tracks.Seconds FROM Albums INNER JOIN Tracks ON Albums.CDJID = Tracks.CDJID "
        "WHERE (((Tracks.SoundFile) Like " +
        Quoted("%" + std::string(path)) + ") AND ((Albums.Player)=1001))");
    if (found->IsEmpty()) return std::nullopt;
    return SoundFileRow{.id = found->Integer("ID"),
                        .soundFile = found->Text("SoundFile"),
                        .title = found->Text("Title"),
                        .track = found->Integer("Track"),
                        .minutes = found->Integer("Minutes"),
                        .seconds = found->Integer("Seconds")};
}

std::optional<SoundFileRow> FindRowToRename(Connection& connection, std::string_view path,
                                            std::string_view newPath) {
    std::optional<SoundFileRow> row = FindSoundFileRow(connection, path);
    if (!row) row = FindSoundFileRow(connection, newPath);
    if (!row) row = FindSoundFileRow(connection, TemporaryPath(path));
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

}  // namespace quillon
