#include "id3/album_plan.h"

#include <algorithm>
#include <deque>
#include <iterator>
#include <string_view>
#include <unordered_map>
#include <utility>

#include "id3/file_names.h"
#include "id3/tag_agreement.h"
#include "id3/tag_comparison.h"
#include "id3/track_artists.h"
#include "platform/basic_text.h"
#include "platform/failure.h"
#include "platform/windows_name.h"
#include "run/disc_folders.h"
#include "run/name_cleaning.h"
#include "run/run.h"
#include "run/sound_files.h"
#include "run/steps.h"
#include "tags/tag_reader.h"

namespace quillon {
namespace {

/// A name by which a file is compared.
std::string PlainName(std::string_view name) {
    return RoundBrackets(NameBeforeRenaming(name).value_or(std::string(name)));
}

/// Whether no name can hold the character, although clean names may.
bool IsRefused(char character) {
    return character == '"' || (character >= 0 && character < ' ');
}

/// A tag's title as part of a file's name. Failure: BadFileName when no name can hold it or nothing
/// is left of it.
std::string FileTitle(const std::string& tagTitle) {
    std::string title = NoNasties(tagTitle);
    if (Trim(title).empty() || std::any_of(title.begin(), title.end(), IsRefused))
        throw Failure(FailureNumber::BadFileName, "title " + tagTitle);
    return title;
}

/// A tag's artist as names may have it.
std::string FileArtist(const std::string& tagArtist) {
    return std::string(Trim(NoNasties(tagArtist)));
}

class Planner {
  public:
    Planner(Run& run, Steps& steps, AlbumPlan& plan) : run_(run), steps_(steps), plan_(plan) {}

    /// Lists the folder and reads all tags. Returns the folders in it.
    std::vector<std::string> Read() {
        Listing<FileEntry> found = List();
        plan_.files.reserve(found.size());
        isKnown_.reserve(found.size());
        for (FileEntry& file : found)
            Add(std::move(file));
        return std::move(found.others);
    }

    void NoteArtists(TrackArtists& artists) const {
        for (const PlannedFile& file : plan_.files)
            artists.Add(file.tag.artist);
    }

    void Plan(const TrackArtists& artists) {
        plan_.isOfSeveralArtists = artists.AreSeveral();
        wishes_.reserve(plan_.files.size());
        for (std::size_t i = 0; i < plan_.files.size(); ++i) {
            PlannedFile& file = plan_.files[i];
            FindTitle(file, artists);
            wishes_.push_back(isKnown_[i]
                                  ? Wish(file)
                                  : Wanted{.standing = Standing::Unknown, .name = file.name});
        }
        // In most albums all names are right.
        if (std::all_of(plan_.files.begin(), plan_.files.end(),
                        [this](const PlannedFile& file) { return IsContent(file); }))
            return;
        for (const PlannedFile& file : plan_.files)
            places_.emplace(LowerCase(file.name), &file - plan_.files.data());
        // Brackets first: a name that a file gets by them is taken when titles are compared.
        for (std::size_t i = 0; i < plan_.files.size(); ++i)
            AskForPlainName(i);
        for (std::size_t i = 0; i < plan_.files.size(); ++i)
            AskForTitle(i);
        while (Settle()) {
        }
    }

  private:
    /// What a file's own name and tag say of it, before others are looked at.
    struct Wanted {
        enum class Standing {
            IsRight,  ///< its name is what its tag says, or it has no tag
            Leaves,   ///< it wants another name
            IsStuck,  ///< its tag has another title, which no name can hold
            Unknown,  ///< it cannot be determined
        };
        Standing standing = Standing::IsRight;
        std::string name = {};
        /// Its name has been cut off where version 1 ends. That alone makes no duplicate of it.
        bool isCut = false;
        bool isGranted = false;
    };
    using Standing = Wanted::Standing;

    /// The folder's sound files.
    Listing<FileEntry> List() {
        steps_.Concerning(plan_.folder.path);
        Listing<FileEntry> found;
        if (!steps_.Try(TagStep::ListFiles, [&] { found = run_.files.FilesIn(plan_.folder.path); }))
            return {};
        // A name that is out of sight may be one that a file here would get.
        const bool isAllSeen = std::ranges::none_of(found.unseen, IsSoundFile);
        std::erase_if(found.entries, [isAllSeen](const FileEntry& file) {
            return !isAllSeen || !IsSoundFile(file.name);
        });
        return found;
    }

    void Add(FileEntry file) {
        PlannedFile& planned = plan_.files.emplace_back();
        planned.plainName = PlainName(file.name);
        steps_.Concerning(file.path);
        isKnown_.push_back(ReadTag(planned, file));
        planned.name = std::move(file.name);
        planned.path = std::move(file.path);
    }

    /// In an album of several artists a name may begin with the track's own.
    void FindTitle(PlannedFile& file, const TrackArtists& artists) const {
        constexpr std::string_view Dash = " - ";
        file.nameArtist = plan_.artist;
        if (plan_.isOfSeveralArtists) {
            file.artist = artists.Of(file.tag.artist, plan_.artist);
            const std::string own = FileArtist(file.artist);
            const auto beginning = BeginningIn(file.plainName, own + std::string(Dash));
            if (beginning) file.nameArtist = file.plainName.substr(0, *beginning - Dash.size());
        }
        file.title = SongTitle(file.plainName, file.nameArtist);
    }

    /// Whether its name stays, whatever others there are.
    bool IsContent(const PlannedFile& file) const {
        const Wanted& wanted = wishes_[static_cast<std::size_t>(&file - plan_.files.data())];
        return wanted.standing != Standing::Leaves && file.plainName == file.name;
    }

    Wanted Wish(PlannedFile& file) {
        steps_.Concerning(file.path);
        Wanted wanted{.standing = Standing::Leaves, .name = file.plainName};
        if (file.plainName == file.name) wanted.standing = Standing::IsRight;
        const bool isCut = IsCutOf(file.title, file.tag.song);
        if (!file.tag.IsThere() || (!isCut && !TitleDiffers(file.tag, file.title))) return wanted;
        std::string title;
        if (!steps_.Try(TagStep::NameByTitle, [&] { title = FileTitle(file.tag.song); })) {
            if (wanted.standing == Standing::IsRight) wanted.standing = Standing::IsStuck;
            return wanted;
        }
        std::string name = file.nameArtist + " - " + title + ".mp3";
        // What differs are characters that no name can hold: it cannot come nearer to the tag.
        if (EqualIgnoringCase(name, file.plainName)) return wanted;
        const bool canBe = steps_.Try(TagStep::NameByTitle, [&] {
            if (!IsWindowsName(name)) throw Failure(FailureNumber::BadFileName, name);
        });
        if (!canBe) {
            if (wanted.standing == Standing::IsRight) wanted.standing = Standing::IsStuck;
            return wanted;
        }
        file.tagTitle = std::move(title);
        return {.standing = Standing::Leaves, .name = std::move(name), .isCut = isCut};
    }

    /// Whether it is known what the tag says, be it that there is none.
    bool ReadTag(PlannedFile& planned, const FileEntry& file) {
        std::optional<Tag> tag = ReadID3(run_, file);
        if (!tag) return false;
        // After a "|" in a field, it is not known which piece of the record is which field.
        const bool isClear = steps_.Try(TagStep::Compare, [&] { RequireClearRecord(*tag); });
        if (isClear) planned.tag = *std::move(tag);
        return isClear;
    }

    std::optional<std::size_t> PlaceOf(std::string_view name) const {
        const auto found = places_.find(LowerCase(name));
        if (found == places_.end()) return std::nullopt;
        return found->second;
    }

    /// Square brackets become round ones, if the name is free or becomes so.
    void AskForPlainName(std::size_t i) {
        const PlannedFile& file = plan_.files[i];
        Wanted& wanted = wishes_[i];
        if (RoundBrackets(file.name) == file.name) return;
        if (const std::optional<std::size_t> holder = PlaceOf(file.plainName)) {
            const Standing standing = wishes_[*holder].standing;
            if (standing == Standing::IsRight || standing == Standing::IsStuck)
                return MakeDuplicate(i, file.plainName, holder, true);
            // A file that gives up the name is another song; from an unknown one nothing follows.
            if (standing == Standing::Unknown) return Block(i);
        } else if (const std::optional<std::size_t> claim = ClaimOn(file.plainName)) {
            return MakeDuplicate(i, file.plainName, claim, true);
        } else {
            const std::optional<bool> isThere = Exists(i, TagStep::RoundBrackets, file.plainName);
            if (!isThere) return LeaveAlone(i);
            if (*isThere) return MakeDuplicate(i, file.plainName, std::nullopt, true);
        }
        if (wanted.standing == Standing::Unknown)
            wanted = {.standing = Standing::Leaves, .name = file.plainName};
        if (wanted.name == file.plainName) Grant(i);
    }

    void AskForTitle(std::size_t i) {
        const PlannedFile& file = plan_.files[i];
        const Wanted& wanted = wishes_[i];
        const bool isDecided = wanted.isGranted || file.isBlocked || file.fate == Fate::IsDuplicate;
        if (wanted.standing != Standing::Leaves || isDecided) return;
        // Only a title makes a duplicate; a file of a temporary name keeps that.
        const auto yield = [&](std::optional<std::size_t> twin) {
            const bool isAnothers = twin && plan_.files[*twin].artist != file.artist;
            if (!file.tagTitle || wanted.isCut || isAnothers) return Block(i);
            MakeDuplicate(i, wanted.name, twin, false);
        };
        const std::optional<std::size_t> claim = ClaimOn(wanted.name);
        if (const std::optional<std::size_t> holder = PlaceOf(wanted.name)) {
            const Standing standing = wishes_[*holder].standing;
            if (standing == Standing::IsRight) return yield(holder);
            if (standing != Standing::Leaves) return Block(i);
        }
        if (claim) return yield(claim);
        if (!PlaceOf(wanted.name)) {
            const std::optional<bool> isThere = Exists(i, TagStep::NameByTitle, wanted.name);
            if (!isThere) return LeaveAlone(i);
            if (*isThere) return yield(std::nullopt);
        }
        Grant(i);
    }

    /// Whether there is a file of this name, which is not among those listed; nothing where nobody
    /// can tell, which is logged for the file that would have it.
    std::optional<bool> Exists(std::size_t i, TagStep step, const std::string& name) {
        steps_.Concerning(plan_.PathOf(plan_.files[i].name));
        bool isThere = false;
        const bool isKnown =
            steps_.Try(step, [&] { isThere = run_.files.FileExists(plan_.PathOf(name)); });
        if (!isKnown) return std::nullopt;
        return isThere;
    }

    std::optional<std::size_t> ClaimOn(std::string_view name) const {
        const auto found = claims_.find(LowerCase(name));
        if (found == claims_.end()) return std::nullopt;
        return found->second;
    }

    void Grant(std::size_t i) {
        wishes_[i].isGranted = true;
        plan_.files[i].fate = Fate::IsRenamed;
        plan_.files[i].newName = wishes_[i].name;
        claims_.emplace(LowerCase(wishes_[i].name), i);
    }

    void MakeDuplicate(std::size_t i, const std::string& of, std::optional<std::size_t> twin,
                       bool byBrackets) {
        PlannedFile& file = plan_.files[i];
        file.fate = Fate::IsDuplicate;
        file.newName = twin ? NameThen(*twin) : of;
        file.twin = twin;
        file.byBrackets = byBrackets;
    }

    /// The name that a file will have.
    const std::string& NameThen(std::size_t i) const {
        const PlannedFile& file = plan_.files[i];
        return file.fate == Fate::IsRenamed ? file.newName : file.name;
    }

    /// The file cannot have the name it wants. It may still lose its brackets or a temporary name.
    void Block(std::size_t i) {
        PlannedFile& file = plan_.files[i];
        file.isBlocked = true;
        file.waits = false;
        file.tagTitle.reset();
        file.twin.reset();
        const bool isOdd = file.plainName != file.name && wishes_[i].name != file.plainName;
        const bool isFree = isOdd && !PlaceOf(file.plainName) && !ClaimOn(file.plainName) &&
                            !Exists(i, TagStep::RoundBrackets, file.plainName).value_or(true);
        file.fate = isFree ? Fate::IsRenamed : Fate::Stays;
        file.newName = isFree ? file.plainName : wishes_[i].name;
        if (isFree) claims_.emplace(LowerCase(file.plainName), i);
    }

    /// The same where it cannot be determined, which has been logged.
    void LeaveAlone(std::size_t i) {
        Block(i);
        PlannedFile& file = plan_.files[i];
        if (file.fate == Fate::Stays) file.newName.clear();
    }

    /// Takes back what depends on a name that stays taken, and finds what has to wait; whether
    /// anything has changed.
    bool Settle() {
        bool changed = false;
        for (std::size_t i = 0; i < plan_.files.size(); ++i) {
            PlannedFile& file = plan_.files[i];
            // A file that waits for the name may not get it; the next run decides.
            if (file.fate == Fate::IsDuplicate && file.twin &&
                (plan_.files[*file.twin].waits ||
                 !EqualIgnoringCase(NameThen(*file.twin), file.newName))) {
                Block(i);
                changed = true;
            }
            if (file.fate != Fate::IsRenamed) continue;
            const std::optional<std::size_t> holder = PlaceOf(file.newName);
            if (!holder || *holder == i) continue;
            const PlannedFile& other = plan_.files[*holder];
            const bool waits = other.fate == Fate::IsDuplicate || other.waits;
            changed |= other.fate == Fate::Stays || waits != file.waits;
            file.waits = waits;
            if (other.fate == Fate::Stays) Block(i);
        }
        return changed;
    }

    Run& run_;
    Steps& steps_;
    AlbumPlan& plan_;
    std::vector<bool> isKnown_;   ///< of the plan's files: whether it is known what the tag says
    std::vector<Wanted> wishes_;  ///< likewise
    /// By name in lower case: which file has it, and which is to get it.
    std::unordered_map<std::string, std::size_t> places_, claims_;
};

}  // namespace

std::string AlbumPlan::PathOf(std::string_view name) const {
    return std::string(folder.path).append("\\").append(name);
}

std::vector<AlbumPlan> PlanAlbum(Run& run, Steps& steps, const std::string& artist,
                                 const FolderEntry& folder) {
    // Planners refer to their plans, which must stay where they are.
    std::deque<AlbumPlan> plans;
    std::deque<Planner> planners;
    const auto read = [&](std::string path) {
        plans.push_back({.artist = artist, .folder = {std::move(path), folder.name}, .files = {}});
        return planners.emplace_back(run, steps, plans.back()).Read();
    };
    std::vector<std::string> folders = read(folder.path);
    if (run.modern.joinsDiscs) {
        for (DiscFolder& disc : TakeDiscFolders(folder.path, folders))
            read(std::move(disc.path));
    }
    TrackArtists artists;
    if (run.modern.keepsTrackArtists) {
        for (const Planner& planner : planners)
            planner.NoteArtists(artists);
    }
    for (Planner& planner : planners)
        planner.Plan(artists);
    return {std::make_move_iterator(plans.begin()), std::make_move_iterator(plans.end())};
}

}  // namespace quillon
