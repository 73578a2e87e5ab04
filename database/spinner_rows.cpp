#include "database/spinner_rows.h"

namespace quillon {

std::vector<FieldValue> FieldsOf(DateTime now, const DownloadSong& song) {
    constexpr std::int64_t Zero = 0;
    return {{"DownLoadTime", now},   {"FileName", song.link},
            {"Artist", song.artist}, {"Album", song.album},
            {"Song", song.song},     {"Length", song.length},
            {"Playcount", Zero},     {"Playlist", std::string()},
            {"Genre", song.genre},   {"Exclude", Zero},
            {"Include", Zero}};
}

std::vector<FieldValue> FieldsOfSpinnerArtist(std::string_view artist) {
    return {{"Artist", std::string(artist)},
            {"ArtistID", std::int64_t{0}},
            {"ShortBio", std::string()},
            {"LongBio", std::string()}};
}

}  // namespace quillon
