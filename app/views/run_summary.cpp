#include "app/views/run_summary.h"

#include <fmt/format.h>

#include "app/display_text.h"

namespace quillon {
namespace {

std::string Counted(std::size_t count, const char* word) {
    return fmt::format("{} {}{}", count, word, count == 1 ? "" : "s");
}

/// What was done with tags, where anything was.
std::string TagsText(const RunCounts& counts) {
    if (counts.tagsWritten > 0) return fmt::format(" Tags: {} written.", counts.tagsWritten);
    if (counts.tagValuesStored == 0) return "";
    return fmt::format(" Tags: {} taken into the database.",
                       Counted(counts.tagValuesStored, "value"));
}

/// Only where the run had to do with playlists.
std::string PlaylistsText(const RunCounts& counts) {
    if (counts.playlistsWritten + counts.playlistsRepaired + counts.playlistsRemoved == 0)
        return "";
    return fmt::format(" Playlists: {} written, {} repaired, {} removed.", counts.playlistsWritten,
                       counts.playlistsRepaired, counts.playlistsRemoved);
}

}  // namespace

std::string SummaryText(const RunSummary& summary) {
    const RunCounts& counts = summary.counts;
    const std::string errors = Counted(counts.errors, "error");
    if (summary.outcome == RunOutcome::NothingRan) return fmt::format("Nothing ran; {}.", errors);
    return fmt::format(
        "{} {}. Albums: {} added, {} changed, {} removed, {} unchanged. "
        "Tracks: {} added, {} changed, {} removed, {} unchanged.{}{} {}.",
        summary.outcome == RunOutcome::Aborted ? "Aborted after" : "Done in",
        ElapsedText(summary.elapsed), counts.albumsAdded, counts.albumsChanged,
        counts.albumsRemoved, counts.albumsUnchanged, counts.tracksAdded, counts.tracksChanged,
        counts.tracksRemoved, counts.tracksUnchanged, TagsText(counts), PlaylistsText(counts),
        errors);
}

int ExitStatus(const RunSummary& summary) {
    switch (summary.outcome) {
        case RunOutcome::NothingRan:
            return 2;
        case RunOutcome::Aborted:
            return 3;
        case RunOutcome::Completed:
            break;
    }
    return summary.counts.errors == 0 ? 0 : 1;
}

}  // namespace quillon
