#include "id3/sound_file_row.h"

#include <memory>

#include "database/sql.h"
#include "platform/basic_text.h"

namespace quillon {

std::optional<SoundFileRow> FindSoundFileRow(Connection& connection, std::string_view path) {
    const std::unique_ptr<RecordSet> found = connection.Query(
        "SELECT Tracks.ID, Tracks.SoundFile, Tracks.Title "
        "FROM Albums INNER JOIN Tracks ON Albums.CDJID = Tracks.CDJID "
        "WHERE (((Tracks.SoundFile) Like " +
        Quoted("%" + std::string(path)) + ") AND ((Albums.Player)=1001))");
    if (found->IsEmpty()) return std::nullopt;
    return SoundFileRow{.id = found->Integer("ID"),
                        .soundFile = found->Text("SoundFile"),
                        .title = found->Text("Title")};
}

bool IsStoredAs(std::string_view soundFile, std::string_view path) {
    return LowerCase(soundFile).ends_with(LowerCase(path));
}

}  // namespace quillon
