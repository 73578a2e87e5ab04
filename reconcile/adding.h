#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>

#include "database/cdjid.h"
#include "platform/database.h"
#include "platform/files.h"
#include "reconcile/compilations.h"
#include "run/run.h"

namespace quillon {

/// What adding files carries from file to file.
struct Adding {
    using Genres = std::unordered_map<std::int64_t, std::string>;

    /// Opens the tables. Throws Failure.
    explicit Adding(Run& theRun);

    Run& run;
    std::unique_ptr<RecordSet> albums;  ///< a cursor over the table
    Genres genres;                      ///< names that have been looked up, by their numbers
    CdjidSequence sequence;
    std::string root;          ///< the library root, with a backslash at its end
    std::string downloadHost;  ///< of the links in the download table

    /// The file handled last, so that the next one of its album needs no look-up; no identifier
    /// before the first.
    std::string artist, album, cdjid;
    /// The folder of the file copied last, which is there.
    std::string folder;
    /// The identifier of the album that was seen to have a cover last.
    std::string coveredAlbum;

    /// The files that have been handled, by the paths in the library that they ask for, where songs
    /// of one title are kept apart.
    std::unordered_map<std::string, std::string> sources;

    /// The albums of several artists in the source.
    Compilations compilations;

    /// Covers that could not be given to their albums, by the path they would have got.
    std::unordered_set<std::string> refusedCovers;
};

/// Copies one sound file into the library and makes its rows: whole or not at all. `artist` and
/// `album` are taken where the file's tag has none; `cover` is the path of the image that becomes
/// the cover of an album without one, "" when there is none; a cover that cannot be copied does not
/// keep the file out. A file that the library has already is passed over. Failures are logged.
///
/// Whether it is in the library now by what its own tag says: another artist and album would make
/// no difference.
bool AddFile(Adding& adding, std::string_view artist, std::string_view album, const FileEntry& file,
             std::string_view cover);

}  // namespace quillon
