#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "library/download_table.h"
#include "library/library.h"
#include "library/playlist_table.h"
#include "platform/clock.h"
#include "platform/database.h"
#include "platform/files.h"
#include "platform/host.h"
#include "platform/window.h"
#include "run/folder_images.h"
#include "run/genre_dictionary.h"
#include "run/left_out.h"
#include "run/modern_music.h"
#include "run/moved_music.h"
#include "run/playlist_entries.h"
#include "run/random_numbers.h"
#include "run/removals.h"
#include "run/settings.h"

namespace quillon {

class HeardSounds;
class KnownTags;
class TagFormats;
class Thumbnails;

/// What a run did, for its summary line and exit status.
struct RunCounts {
    std::size_t albumsAdded = 0, albumsChanged = 0, albumsRemoved = 0, albumsUnchanged = 0;
    std::size_t tracksAdded = 0, tracksChanged = 0, tracksRemoved = 0, tracksUnchanged = 0;
    std::size_t tagsWritten = 0;      ///< files whose tag has become another one
    std::size_t tagValuesStored = 0;  ///< values of tags that have changed a row
    /// Playlist files that are new, that have other entries than before, and that are gone because
    /// none was left.
    std::size_t playlistsWritten = 0, playlistsRewritten = 0, playlistsRemoved = 0;
    std::size_t filesRenamed = 0, filesRemoved = 0, filesCopied = 0;
    std::size_t rowsRepointed = 0;  ///< rows whose stored path has become another one
    /// Albums that got an image, another one, or lost theirs.
    std::size_t imagesAdded = 0, imagesChanged = 0, imagesRemoved = 0;
    std::size_t songsAdded = 0, artistsAdded = 0;  ///< to the download table
    std::size_t pagesWritten = 0;                  ///< of the album picker, the index included
    std::size_t leftOut = 0;      ///< music files and folders that the layout has no place for
    std::size_t errors = 0;       ///< calls of LogError
    std::size_t recordsLost = 0;  ///< that the host's log did not take
};

/// What a run has to tell at its end.
struct RunReport {
    RunCounts counts;        ///< of rows only what the database holds for good
    Removals::AllGone gone;  ///< likewise
    bool saved = true;       ///< whether that is all that was counted
    bool braked = false;     ///< whether something would have gone, and the brake held
};

/// What is reported elsewhere because the host's log does not take it.
struct LostRecords {
    std::string reason;               ///< why the first one was lost; "" while none was
    std::vector<std::string> errors;  ///< the first few that are errors
};

/// The run-wide objects, made once and passed by reference to every phase. Phases read settings
/// and these objects directly; they share nothing else but the database and the files.
class Run {
  public:
    Run(Host& hostObject, Files& fileSystem, Clock& runClock, Window& runWindow);
    Run(const Run&) = delete;
    Run& operator=(const Run&) = delete;

    Host& host;
    Files& files;
    Clock& clock;
    Window& window;
    FormState form;
    Settings settings;

    /// What becomes of music that is not where it was.
    MovedMusicSettings movedMusic;

    /// What is done for music, pages and players of today.
    ModernMusic modern;

    /// Reads tags of all kinds where `modern` asks for it; null: only those of version 1 are read.
    TagFormats* tagFormats = nullptr;

    /// What tags of all kinds have been found to say, while a reconciliation reads them.
    std::shared_ptr<KnownTags> knownTags;

    /// The sounds of files whose tags this run has read; null: none are wanted.
    std::shared_ptr<HeardSounds> heardSounds;

    /// The images that the walk has seen in album folders, where they are covers.
    FolderImages folderImages;

    /// Opens further connections; set by the driver at the start.
    DatabaseProvider* databases = nullptr;

    /// Makes small pictures of covers; set by whoever makes the run.
    Thumbnails* thumbnails = nullptr;

    /// The library database; set by `main`.
    std::unique_ptr<Connection> connection;

    /// Tables of that database that are worked on in memory, each read when it is first asked for;
    /// from then on nothing else may change them. Throw Failure.
    Library& TheLibrary();
    DownloadTable& TheDownloadTable();
    PlaylistTable& ThePlaylistTable();
    /// They are read again at the next request. The genre dictionary, which is made of them,
    /// becomes empty.
    void ForgetTables();

    /// Genre names by ID3 genre number; "" where the database has none.
    std::array<std::string, 256> GenreNames;

    /// The roots that the folder phases walk.
    std::vector<FolderEntry> LibraryFolders;

    /// The exclude list's values as written, and whether there is no list.
    std::vector<std::string> ExcludeList;
    bool ExcludeEmpty = true;

    /// Of the download table's songs, where the comparison of tags is to ask for them.
    quillon::GenreDictionary GenreDictionary;

    /// The playlist working set; replaced where a phase starts with an empty one.
    PlaylistEntries playlistEntries;

    /// Seeded once, when the run starts.
    RandomNumbers random;

    /// Shows the current item and lets pending events run.
    void ShowItem(std::string_view item);

    /// Lets pending window events run; the Abort button is noticed here.
    void ProcessEvents();

    /// What the phase, or the share of it that was started (see counted.h), does next consists of
    /// this many steps; 0 where that is not known.
    void StartCounting(std::size_t total);

    /// The same with as many steps as "SELECT ... FROM" has rows with this behind it: one table.
    void StartCountingRows(std::string_view from);

    /// One of these steps is done, or several.
    void CountDone(std::size_t steps = 1);

    /// Set by the Abort button; only ever goes from false to true.
    bool AbortRequested = false;

    /// Whether everything is kept by which an interrupted run can be made good. Where it cannot be,
    /// no phase may change the library any more.
    bool isSecured = true;

    RunCounts counts;
    LostRecords lostRecords;

    /// The music that the walk had no place for, as far as it came.
    LeftOut leftOut;

    /// What may be removed, and what has been.
    Removals removals;

    /// Makes the database's changes durable. What was counted of rows has happened only then: the
    /// report leaves out what no later call confirms. Throws Failure.
    void Flush();

    RunReport Report() const;

  private:
    template <typename Table>
    Table& Loaded(std::unique_ptr<Table>& table);

    std::unique_ptr<Library> library_;
    std::unique_ptr<DownloadTable> downloadTable_;
    std::unique_ptr<PlaylistTable> playlistTable_;
    RunCounts savedCounts_;
    Removals::Gone savedTracks_;
};

}  // namespace quillon
