#include "app/checks/music_check.h"

#include <algorithm>
#include <cstddef>
#include <fmt/format.h>
#include <ostream>
#include <string_view>

#include "app/checks/music_search.h"
#include "driver/library_folders.h"
#include "driver/modes.h"
#include "platform/basic_text.h"
#include "platform/failure.h"
#include "run/library_lists.h"
#include "run/modern_music.h"
#include "run/paths.h"
#include "run/removals.h"

namespace quillon {
namespace {

/// A folder that holds the library, or a part of it.
struct Place {
    std::string name;  ///< "LibraryRoot", "Library folder"
    std::string path;
    std::string beginning;  ///< of the paths below it, in lower case
    bool isThere = true;
    std::size_t tracks = 0;  ///< of the library's own that lie below

    std::string Text() const { return fmt::format("{} ({})", name, path); }
};

std::string Tracks(std::size_t count) {
    return fmt::format("{} of the library's own tracks {}", count, count == 1 ? "lies" : "lie");
}

class MusicCheck {
  public:
    MusicCheck(LocalHost& local, const Settings& settings, Findings& findings)
        : files_(local.files),
          settings_(settings),
          isBraked_(ReadSafetyLimits(local.host).Brake),
          joinsDiscs_(!settings.FlatStructure && ReadModernMusic(local.host).joinsDiscs),
          findings_(findings) {
        const bool hasSeveral = settings.LibraryDepthOption;
        for (const FolderEntry& folder : BuildLibraryFolders(files_, settings))
            AddPlace(hasSeveral ? "Library folder" : "LibraryRoot", folder.path, true);
        if (hasSeveral) AddAbsentFolders();
    }

    /// What stands before the drive in a stored path is no part of it.
    void CountTracks(const std::vector<std::string>& soundFiles) {
        for (const std::string& soundFile : soundFiles) {
            if (soundFile.empty()) continue;
            const std::string path = LowerCase(soundFile);
            bool isInside = false;
            for (Place& place : places_) {
                if (path.find(place.beginning) == std::string::npos) continue;
                ++place.tracks;
                isInside = true;
            }
            if (isInside) {
                ++inside_;
            } else if (outside_++ == 0) {
                outsider_ = soundFile;
            }
        }
    }

    std::size_t Inside() const { return inside_; }

    void Find() {
        std::size_t withMusic = 0;
        std::vector<const Place*> empty;
        for (const Place& place : places_) {
            if (!place.isThere) {
                FindAbsent(place);
                continue;
            }
            const FoundMusic music =
                LookForMusic(files_, place.path, settings_.FlatStructure ? 0 : 2, joinsDiscs_);
            if (music.place == MusicPlace::None) {
                empty.push_back(&place);
                continue;
            }
            ++withMusic;
            if (!music.example.empty()) FindMisplaced(place, music);
        }
        if (withMusic == 0) {
            FindNothing();
        } else {
            for (const Place* const place : empty)
                FindEmpty(*place);
        }
        FindOutsiders();
    }

    /// The same for a run that only adds files.
    void FindBeforeAdding() {
        if (inside_ == 0 || !isBraked_) return;
        const FoundMusic music = LookForMusic(files_, settings_.LibraryRoot, 2, joinsDiscs_);
        if (music.place != MusicPlace::None) return;
        findings_.Problem(fmt::format(
            "LibraryRoot ({}) holds no music at all, and {} below it. Is a drive not mounted? A "
            "run would add nothing and end with an error. If the music is gone for good, run once "
            "with --allow-removals",
            settings_.LibraryRoot, Tracks(inside_)));
    }

  private:
    void AddAbsentFolders() {
        for (const std::string& line : ListedLibraryFolders(files_, settings_.LibraryRoot)) {
            const std::string drive = GetDrive(AddBackslash(line));
            const bool isPath = drive.ends_with(':') || drive.starts_with("\\\\");
            if (isPath && !FolderMayExist(files_, line))
                AddPlace("Library folder", FolderPath(line), false);
        }
    }

    void AddPlace(const std::string& name, const std::string& path, bool isThere) {
        places_.push_back({name, path, LowerCase(AddBackslash(path)), isThere});
    }

    /// What a run would make of it, and what to do.
    std::string Advice() const {
        const std::string run = isBraked_ ? "A run would remove nothing and end with an error"
                                          : "Without the brake a run would remove their rows";
        return "Is a drive not mounted? " + run +
               ". If the music is gone for good, run once with --allow-removals";
    }

    void FindAbsent(const Place& place) {
        if (place.tracks == 0) return;
        findings_.Problem(fmt::format(
            "{}, which a .txt file in LibraryRoot names, is not there, and {} below it. Is a drive "
            "not mounted? A run would keep their rows and end with an error. If the music is gone "
            "for good, delete the line",
            place.Text(), Tracks(place.tracks)));
    }

    /// No library folder has any music.
    void FindNothing() {
        const std::string root = fmt::format("LibraryRoot ({})", settings_.LibraryRoot);
        const std::size_t owned = inside_ + outside_;
        if (owned > 0) {
            findings_.Problem(fmt::format(
                "{} holds no music at all, and the library has {} track{} of its own. {}", root,
                owned, owned == 1 ? "" : "s", Advice()));
        } else if (!places_.empty()) {
            findings_.Caution(fmt::format(
                "{} holds no music, so there is nothing to add. Put .mp3 files there, or name the "
                "folder that has them",
                root));
        }
    }

    void FindEmpty(const Place& place) {
        if (place.tracks == 0) return;
        findings_.Problem(fmt::format("{} holds no music at all, and {} below it. {}", place.Text(),
                                      Tracks(place.tracks), Advice()));
    }

    void FindMisplaced(const Place& place, const FoundMusic& music) {
        const bool isDeeper = music.place == MusicPlace::Deeper;
        findings_.Add(
            place.tracks > 0,
            fmt::format("{} has music only further {} than a run looks for it: {} for one, where "
                        "it expects {}. {}",
                        place.Text(), isDeeper ? "down" : "up", music.example,
                        settings_.FlatStructure ? "Artist_Song.mp3" : "ARTIST\\ALBUM\\Song.mp3",
                        isDeeper ? AdviceOnDeeper() : AdviceOnHigher()));
    }

    std::string_view AdviceOnDeeper() const {
        if (settings_.FlatStructure) return "Folders of artists and albums need FlatStructure=0";
        if (settings_.LibraryDepthOption) return "Move its folders one level up";
        return "Name the folder below it, or set LibraryDepthOption=1 where each folder in it is a "
               "library";
    }

    static std::string_view AdviceOnHigher() {
        return "Name the folder above it; songs side by side, named Artist_Song.mp3, need "
               "FlatStructure=1";
    }

    void FindOutsiders() {
        if (outside_ == 0 || places_.empty()) return;
        const std::string run =
            isBraked_ ? "A run takes them for missing, and then the brake keeps all rows"
                      : "A run would remove them";
        findings_.Add(
            inside_ == 0,
            fmt::format(
                "{} in none of the library folders ({} for one). {}. Check LibraryRoot{} and "
                "[Drives] in host.ini; if that music is gone for good, run once "
                "with --allow-removals",
                Tracks(outside_), outsider_, run,
                settings_.LibraryDepthOption ? " and its .txt files" : ""));
    }

    Files& files_;
    const Settings& settings_;
    bool isBraked_;
    bool joinsDiscs_;
    Findings& findings_;
    std::vector<Place> places_;
    std::size_t inside_ = 0, outside_ = 0;
    std::string outsider_;
};

}  // namespace

void CheckMusic(LocalHost& local, const Settings& settings,
                const std::vector<std::string>& soundFiles, std::ostream& out,
                Findings& findings) try {
    out << fmt::format("  {} of the tracks are the library's own", soundFiles.size());
    if (settings.LibraryRoot.empty() || !local.files.FolderExists(settings.LibraryRoot)) {
        out << '\n';
        return;
    }
    MusicCheck check(local, settings, findings);
    check.CountTracks(soundFiles);
    if (!soundFiles.empty())
        out << fmt::format(", {} of them name a file in a library folder", check.Inside());
    out << '\n';
    if (WalksLibrary(settings)) check.Find();
    if (settings.AddFiles) check.FindBeforeAdding();
} catch (const Failure&) {
    // What cannot be listed is reported with the folders.
    out << '\n';
}

}  // namespace quillon
