#include "reconcile/missing_music.h"

#include <memory>
#include <string>
#include <string_view>

#include "platform/basic_text.h"
#include "platform/database.h"
#include "run/paths.h"
#include "run/run.h"

namespace quillon {
namespace {

/// The library folders, and what is doubtful about tracks below them that are missing.
class Doubts {
  public:
    Doubts(const Run& run, const std::vector<bool>& hasMusic) {
        for (std::size_t i = 0; i < run.LibraryFolders.size(); ++i) {
            const std::string& path = run.LibraryFolders[i].path;
            roots_.push_back({path, LowerCase(AddBackslash(path)), hasMusic.at(i)});
        }
    }

    /// Something may stand before the drive in a stored path.
    void Look(const std::string& soundFile) {
        const std::string path = LowerCase(soundFile);
        bool isInside = false;
        for (Root& root : roots_) {
            if (path.find(root.beginning) == std::string::npos) continue;
            isInside = true;
            root.misses = true;
        }
        if (!isInside) ++outside_;
    }

    std::string Clause() const {
        for (const Root& root : roots_) {
            if (root.misses && !root.hasMusic) return "no music was found in " + root.path;
        }
        if (outside_ == 0) return "";
        return std::to_string(outside_) + " of them " + (outside_ == 1 ? "lies" : "lie") +
               " in none of the library folders";
    }

  private:
    struct Root {
        std::string path, beginning;
        bool hasMusic = false;
        bool misses = false;
    };
    std::vector<Root> roots_;
    std::size_t outside_ = 0;
};

}  // namespace

PlannedRemoval MissingTracks(Run& run, const std::vector<bool>& hasMusic) {
    PlannedRemoval missing{.kind = Removable::Tracks, .names = {}};
    Doubts doubts(run, hasMusic);
    const std::unique_ptr<RecordSet> rows = run.connection->Query(
        "SELECT Tracks.SoundFile, Tracks.Track FROM Albums INNER JOIN Tracks "
        "ON Albums.CDJID = Tracks.CDJID WHERE Albums.Player=1001");
    for (; !rows->IsEof(); rows->MoveNext()) {
        ++missing.outOf;
        if (IsNull(rows->Get("Track")) || rows->Integer("Track") != 0) continue;
        missing.names.push_back(rows->Text("SoundFile"));
        doubts.Look(missing.names.back());
    }
    missing.doubt = doubts.Clause();
    return missing;
}

}  // namespace quillon
