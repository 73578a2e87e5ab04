#include "driver/procedures.h"

#include "covers/refresh_album_covers.h"
#include "database/remove_duplicates.h"
#include "download/populate_spinner_artist.h"
#include "download/populate_spinner_tracks.h"
#include "id3/difference_table.h"
#include "id3/id3_to_db.h"
#include "id3/song_genre.h"
#include "id3/verify_tags.h"
#include "id3/write_id3.h"
#include "picker/album_picker.h"
#include "playlists/capture.h"
#include "playlists/convert.h"
#include "playlists/create.h"
#include "playlists/refresh.h"
#include "reconcile/add_files_to_library.h"
#include "reconcile/refresh_database.h"
#include "remote/make_remote.h"

namespace quillon {

Procedures AvailableProcedures() {
    Procedures procedures;
    procedures.PopulateGenre = PopulateGenre;
    procedures.BuildORsRecordset = BuildORsRecordset;
    procedures.CapturePlaylists = CapturePlaylists;
    procedures.RemoveDuplicates = RemoveDuplicates;
    procedures.VerifyID3Tags = VerifyID3Tags;
    procedures.RefreshDatabase = RefreshDatabase;
    procedures.AddFilesToLibrary = AddFilesToLibrary;
    procedures.PopulateSpinnerTracks = PopulateSpinnerTracks;
    procedures.PopulateSpinnerArtist = PopulateSpinnerArtist;
    procedures.RefreshAlbumCovers = RefreshAlbumCovers;
    procedures.MakeRemote = MakeRemote;
    procedures.BuildAlbumPicker = BuildAlbumPicker;
    procedures.OutputReconcileTable = OutputReconcileTable;
    procedures.UpdateDatabaseFromID3 = UpdateDatabaseFromID3;
    procedures.WriteID3 = WriteID3;
    procedures.RefreshPlaylist = RefreshPlaylist;
    procedures.CreateNewPlaylists = CreateNewPlaylists;
    procedures.ConvertPlaToM3u = aPlaToM3u_Click;
    procedures.ConvertM3uToPla = M3uToPla;
    return procedures;
}

}  // namespace quillon
