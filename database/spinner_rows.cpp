#include "database/spinner_rows.h"

namespace quillon {

void FillSpinnerRow(RecordSet& spinner, DateTime now, const DownloadSong& song) {
    constexpr std::int64_t Zero = 0;
    spinner.Set("DownLoadTime", now);
    spinner.Set("FileName", song.link);
    spinner.Set("Artist", song.artist);
    spinner.Set("Album", song.album);
    spinner.Set("Song", song.song);
    spinner.Set("Length", song.length);
    spinner.Set("Playcount", Zero);
    spinner.Set("Playlist", std::string());
    spinner.Set("Genre", song.genre);
    spinner.Set("Exclude", Zero);
    spinner.Set("Include", Zero);
}

void AddSpinnerArtistRow(RecordSet& spinnerArtist, std::string_view artist) {
    spinnerArtist.AddNew();
    spinnerArtist.Set("Artist", std::string(artist));
    spinnerArtist.Set("ArtistID", std::int64_t{0});
    spinnerArtist.Set("ShortBio", std::string());
    spinnerArtist.Set("LongBio", std::string());
    spinnerArtist.Update();
}

}  // namespace quillon
