#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "platform/files.h"
#include "tags/tag.h"

namespace quillon {

class Run;
class Steps;

/// The steps of the comparison of tags in one library folder.
enum class TagStep {
    Open = 1,
    ListFolders = 2,
    ListFiles = 3,
    RoundBrackets = 4,
    Compare = 5,
    NoteDifference = 6,
    NameByTitle = 7,  ///< the names by the titles, and all that follows from them
};

/// What becomes of a sound file's name in a comparison of tags.
enum class Fate {
    Stays,
    IsRenamed,
    IsDuplicate,  ///< it is removed; the file that has the name or gets it stays
};

/// A sound file of an album folder, and what its name and its tag ask for.
struct PlannedFile {
    std::string name;       ///< at present
    std::string path;       ///< likewise
    std::string plainName;  ///< the one to compare by: with round brackets, not a temporary one
    std::string title;      ///< of the song by that name
    Tag tag;                ///< none where there is no tag, or it could not be read
    std::optional<std::string> tagTitle;  ///< for its name, where the tag has another title
    /// What its name begins with: the artist's folder, or the track's own artist where that is so.
    std::string nameArtist;
    std::string artist;  ///< the one that the track is by, where its album is of several

    Fate fate = Fate::Stays;
    /// IsRenamed: its own; IsDuplicate: that of the other file; isBlocked: that which it cannot
    /// have, if that is not a matter of the log already.
    std::string newName;
    /// IsDuplicate: the other file's place in the plan; nothing for one that is not in there.
    std::optional<std::size_t> twin = {};
    bool byBrackets = false;  ///< IsDuplicate for its name alone, whatever its tag says
    /// IsRenamed: only after the duplicate that has the name now is removed.
    bool waits = false;
    /// The name that it should have belongs to a file that cannot leave it.
    bool isBlocked = false;
};

/// The sound files of an album folder, or of a disc folder in it, in name order. Nothing is changed
/// yet.
struct AlbumPlan {
    std::string artist;  ///< artist folder's name
    FolderEntry folder;  ///< the path of a disc's, the name of the album's
    std::vector<PlannedFile> files;
    bool isOfSeveralArtists = false;  ///< each track has its own artist

    std::string PathOf(std::string_view name) const;
};

/// Reads the tags of an album's sound files and decides which names they get: a plan for the
/// album's folder and one for each disc folder in it, where those belong to it; a file stays in its
/// folder. A tag's title is trusted over the name; where several files would have a name, one gets
/// it, and the others are its duplicates. Files may swap names or pass them on: a file is a
/// duplicate of another one only if that one keeps the name. If not every sound file of a folder
/// can be seen, the plan has none of its files, so that the folder stays as it is. What fails is
/// logged through `steps`, with the path.
std::vector<AlbumPlan> PlanAlbum(Run& run, Steps& steps, const std::string& artist,
                                 const FolderEntry& folder);

}  // namespace quillon
