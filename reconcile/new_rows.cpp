#include "reconcile/new_rows.h"

#include <initializer_list>
#include <string_view>

#include "database/schema.h"

namespace quillon {
namespace {

constexpr std::int64_t Zero = 0, Unknown = -1;

void SetZero(RecordSet& row, std::initializer_list<std::string_view> fields) {
    for (const std::string_view field : fields)
        row.Set(field, Zero);
}

void SetDates(RecordSet& row, DateTime added) {
    row.Set("DateAdded", added);
    row.Set("DateReleased", DateTime{});
    row.Set("DateLastPlayed", DateTime{});
}

}  // namespace

void AddAlbumRow(RecordSet& albums, DateTime now, const NewAlbum& album) {
    albums.AddNew();
    albums.Set("CDJID", album.cdjid);
    albums.Set("Title", album.title);
    albums.Set("Artist", album.artist);
    albums.Set("Player", OwnedPlayer);
    albums.Set("LocationValid", true);
    albums.Set("Position", Zero);
    albums.Set("FrameOffset", Unknown);
    albums.Set("Frames", Zero);
    albums.Set("Group", Unknown);
    SetDates(albums, now);
    albums.Set("Tracks", std::int64_t{album.trackCount});
    albums.Set("Minutes", Unknown);
    albums.Set("Seconds", Unknown);
    SetZero(albums,
            {"Rating1", "Rating2", "Rating3", "Rating4", "TimesPlayed", "TimePlayed", "Position"});
    albums.Set("NeverPlay", false);
    albums.Update();
}

void AddTrackRow(RecordSet& tracks, DateTime now, const NewTrack& track) {
    tracks.AddNew();
    tracks.Set("CDJID", track.cdjid);
    tracks.Set("Minutes", track.minutes);
    tracks.Set("Seconds", track.seconds);
    tracks.Set("Track", track.number);
    tracks.Set("Title", track.title);
    if (track.artist) tracks.Set("Artist", *track.artist);
    tracks.Set("SoundFile", track.soundFile);
    tracks.Set("Notes", "Album: " + track.album);
    SetDates(tracks, now);
    SetZero(tracks, {"Frames", "Rating1", "Rating2", "Rating3", "Rating4", "TimesPlayed",
                     "TimePlayed", "Group"});
    tracks.Set("NeverPlay", false);
    tracks.Update();
}

}  // namespace quillon
