#include "app/views/run_summary.h"

#include <fmt/format.h>
#include <utility>

#include "app/display_text.h"

namespace quillon {
namespace {

/// A record that is cut to less says nothing.
constexpr std::size_t LeastRecordColumns = 12;

constexpr const char* NothingWasChanged = "No album, track, playlist or tag was changed.";

/// A number of things that something happened to, with the words around it.
struct Happening {
    std::size_t count = 0;
    std::string words;
};

std::string Counted(std::size_t count, const char* word) {
    return fmt::format("{} {}{}", count, word, count == 1 ? "" : "s");
}

/// "Albums: 2 added, 398 unchanged."; nothing where nothing happened.
std::string Told(const char* what, const std::vector<Happening>& happenings) {
    std::string text;
    for (const Happening& one : happenings) {
        if (one.count > 0)
            text += fmt::format("{}{} {}", text.empty() ? "" : ", ", one.count, one.words);
    }
    return text.empty() ? "" : fmt::format("{}: {}.", what, text);
}

std::string Joined(const std::string& first, const std::string& second) {
    return first + (first.empty() || second.empty() ? "" : " ") + second;
}

std::string AlbumsAndTracks(const RunCounts& counts, bool withUnchanged) {
    const std::size_t albums = withUnchanged ? counts.albumsUnchanged : 0;
    const std::size_t tracks = withUnchanged ? counts.tracksUnchanged : 0;
    return Joined(Told("Albums", {{counts.albumsAdded, "added"},
                                  {counts.albumsChanged, "changed"},
                                  {counts.albumsRemoved, "removed"},
                                  {albums, "unchanged"}}),
                  Told("Tracks", {{counts.tracksAdded, "added"},
                                  {counts.tracksChanged, "changed"},
                                  {counts.tracksRemoved, "removed"},
                                  {tracks, "unchanged"}}));
}

std::string PlaylistsAndTags(const RunCounts& counts) {
    const char* const values = counts.tagValuesStored == 1 ? "value" : "values";
    return Joined(Told("Playlists", {{counts.playlistsWritten, "written"},
                                     {counts.playlistsRepaired, "repaired"},
                                     {counts.playlistsRemoved, "removed"}}),
                  Told("Tags", {{counts.tagsWritten, "written"},
                                {counts.tagValuesStored,
                                 fmt::format("{} taken into the database", values)}}));
}

std::string Errors(const RunSummary& summary) {
    const auto& [count, lost] = std::pair(summary.counts.errors, summary.counts.recordsLost);
    const std::string errors = count == 0 ? "no errors" : Counted(count, "error");
    if (lost == 0) return count == 0 ? errors : errors + " in host.log";
    return errors + (count == 0 ? "" : " on the error output") + ", host.log lacks " +
           Counted(lost, "record");
}

/// "Done in 0:01:02; 2 errors in host.log", without the full stop.
std::string Outcome(const RunSummary& summary) {
    const std::string errors = Errors(summary);
    const std::string elapsed = ElapsedText(summary.elapsed);
    switch (summary.outcome) {
        case RunOutcome::NothingRan:
            return "Nothing ran; " + errors;
        case RunOutcome::Aborted:
            return fmt::format("Aborted after {}; {}", elapsed, errors);
        case RunOutcome::Completed:
            break;
    }
    return fmt::format("Done in {}; {}", elapsed, errors);
}

/// The same for a narrow place: where the errors are told is worth more than the duration.
std::string ShortOutcome(const RunSummary& summary) {
    const char* const word = summary.outcome == RunOutcome::Aborted ? "Aborted" : "Done";
    return fmt::format("{}; {}", word, Errors(summary));
}

/// What a record at the end of the first line is introduced by; empty where none belongs there.
std::string Introduction(const RunSummary& summary) {
    if (summary.counts.errors > 0) return Outcome(summary) + ", last: ";
    return summary.outcome == RunOutcome::NothingRan ? "Nothing ran: " : "";
}

std::string FirstLine(const RunSummary& summary, std::string_view record, std::size_t columns) {
    const std::string introduction = Introduction(summary);
    const std::size_t taken = introduction.size();
    if (taken > 0 && !record.empty() && taken + LeastRecordColumns <= columns)
        return introduction + ShortenMiddle(OneLine(record), columns - taken);
    const std::string outcome = Outcome(summary) + '.';
    const bool fits = outcome.size() <= columns || summary.outcome == RunOutcome::NothingRan;
    return FitColumns(fits ? outcome : ShortOutcome(summary) + '.', columns);
}

std::string OrElse(const std::string& text, const char* other) {
    return text.empty() ? other : text;
}

}  // namespace

std::array<std::string, 3> SummaryLines(const RunSummary& summary) {
    if (summary.outcome == RunOutcome::NothingRan) {
        return {Outcome(summary) + '.', NothingWasChanged,
                "'quillon check' tells what stands in the way."};
    }
    return {Outcome(summary) + '.',
            OrElse(AlbumsAndTracks(summary.counts, true), "No album or track was changed."),
            OrElse(PlaylistsAndTags(summary.counts), "No playlist or tag was changed.")};
}

std::array<std::string, 3> SummaryLines(const RunSummary& summary, std::string_view record,
                                        std::size_t columns) {
    std::array<std::string, 3> lines = SummaryLines(summary);
    if (DisplayColumns(lines[1]) > columns && summary.outcome != RunOutcome::NothingRan)
        lines[1] = OrElse(AlbumsAndTracks(summary.counts, false), "No album or track was changed.");
    for (std::string& line : lines)
        line = FitColumns(line, columns);
    lines[0] = FirstLine(summary, record, columns);
    return lines;
}

std::string SummaryText(const RunSummary& summary) {
    const std::string outcome = Outcome(summary) + '.';
    if (summary.outcome == RunOutcome::NothingRan)
        return outcome + " 'quillon check' tells what stands in the way.";
    return outcome + ' ' +
           OrElse(Joined(AlbumsAndTracks(summary.counts, true), PlaylistsAndTags(summary.counts)),
                  NothingWasChanged);
}

std::vector<std::string> LostRecordsLines(const LostRecords& lost, const RunCounts& counts) {
    if (counts.recordsLost == 0) return {};
    std::vector<std::string> lines{fmt::format("quillon: host.log lacks {}: {}.",
                                               Counted(counts.recordsLost, "record"),
                                               OneLine(lost.reason))};
    for (const std::string& error : lost.errors)
        lines.push_back("   " + OneLine(error));
    if (counts.errors > lost.errors.size() && !lost.errors.empty())
        lines.push_back(fmt::format("   and more, {} in all", Counted(counts.errors, "error")));
    return lines;
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
    return summary.counts.errors + summary.counts.recordsLost == 0 ? 0 : 1;
}

}  // namespace quillon
