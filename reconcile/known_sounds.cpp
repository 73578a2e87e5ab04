#include "reconcile/known_sounds.h"

#include <array>

#include "database/row_mark.h"
#include "database/snapshot_file.h"
#include "run/log.h"
#include "run/run.h"

namespace quillon {
namespace {

constexpr std::string_view SongKind = "Song";
constexpr std::array Kinds{SongKind};
constexpr SnapshotFormat Format{.title = "Quillon known sounds 1", .kinds = Kinds};

std::uint64_t WholeNumber(SnapshotLine& line) {
    return static_cast<std::uint64_t>(line.Whole<std::int64_t>());
}

struct Line {
    TrackId id{};
    RowMark mark;
    KnownSound sound;
};

Line Read(SnapshotLine& line) {
    Line read;
    read.id = TrackId{line.Whole<std::int64_t>()};
    read.mark.path = line.Whole<std::uint32_t>();
    read.mark.added = line.Whole<std::uint32_t>();
    read.sound.file.size = WholeNumber(line);
    read.sound.file.time = line.Whole<std::int64_t>();
    read.sound.print.size = WholeNumber(line);
    read.sound.print.samples = WholeNumber(line);
    if (const auto whole = line.WholeOrNull<std::int64_t>())
        read.sound.whole = static_cast<std::uint64_t>(*whole);
    return read;
}

void Write(SnapshotWriter& file, const TrackRow& track, const KnownSound& sound) {
    const auto whole = [](std::uint64_t number) { return static_cast<std::int64_t>(number); };
    const RowMark mark = MarkOf(track);
    file.Line(SongKind)
        .Whole(static_cast<std::int64_t>(track.id))
        .Whole(mark.path)
        .Whole(mark.added)
        .Whole(whole(sound.file.size))
        .Whole(sound.file.time)
        .Whole(whole(sound.print.size))
        .Whole(whole(sound.print.samples))
        .Whole(sound.whole ? std::optional(whole(*sound.whole)) : std::nullopt);
}

}  // namespace

std::string KnownSoundsPath(std::string_view database) {
    return std::string(database) + ".sounds";
}

std::string KnownSounds::Path() const {
    return KnownSoundsPath(run_.settings.Nirvis_CDJ_DB);
}

KnownSounds::KnownSounds(Run& run, Library& library) : run_(run), library_(library) {
    if (!run_.files.FileExists(Path())) return;
    const bool isWhole = ReadSnapshot(run_.files, Path(), Format, [this](auto, SnapshotLine& line) {
        const Line known = Read(line);
        const TrackRow* const track = library_.FindTrack(known.id);
        if (track == nullptr || !known.mark.Fits(MarkOf(*track))) {
            isChanged_ = true;
            return;
        }
        if (sounds_.size() < library_.Tracks().size()) sounds_.resize(library_.Tracks().size());
        sounds_[track->place] = known.sound;
        // The row has got another path since.
        if (known.mark != MarkOf(*track)) isChanged_ = true;
    });
    if (isWhole) return;
    sounds_.clear();
    isChanged_ = true;
    WriteLog(run_, LogSource,
             "What is known of the sounds of music files is damaged, and is made anew: " + Path());
}

const KnownSound* KnownSounds::Of(const TrackRow& track) const {
    if (track.place >= sounds_.size() || !sounds_[track.place]) return nullptr;
    return &*sounds_[track.place];
}

void KnownSounds::Set(const TrackRow& track, const KnownSound& sound) {
    if (sounds_.size() < library_.Tracks().size()) sounds_.resize(library_.Tracks().size());
    isChanged_ = true;
    sounds_[track.place] = sound;
}

void KnownSounds::Save() {
    const auto hasGone = [this](const TrackRow& track) {
        return track.isGone && Of(track) != nullptr;
    };
    for (const TrackRow& track : library_.Tracks())
        isChanged_ |= hasGone(track);
    if (!isChanged_) return;
    SnapshotWriter file(run_.files, Path(), Format);
    for (const TrackRow& track : library_.Tracks()) {
        const KnownSound* const sound = Of(track);
        if (sound != nullptr && !track.isGone) Write(file, track, *sound);
    }
    file.Close();
    isChanged_ = false;
}

}  // namespace quillon
