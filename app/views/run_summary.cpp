#include "app/views/run_summary.h"

#include <algorithm>
#include <fmt/format.h>
#include <iterator>
#include <utility>

#include "app/text/display_text.h"

namespace quillon {
namespace {

/// A record that is cut to less says nothing.
constexpr std::size_t LeastRecordColumns = 12;

constexpr const char* NothingWasChanged = "No album, track, file, playlist or tag was changed.";
constexpr const char* BrakeHeld = "The brake held, host.log tells what would have gone.";
constexpr const char* NotAllSaved =
    "Not everything could be saved in the database; what is not certain is not counted.";
constexpr const char* SeeCheck = "'quillon check' says what is in the way.";

/// A number of things that something happened to, with the words around it.
struct Happening {
    std::size_t count = 0;
    std::string words;
};

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

/// "1 song added" behind "Download table: ".
Happening Added(std::size_t count, const char* word) {
    return {count, fmt::format("{}{} added", word, count == 1 ? "" : "s")};
}

/// All else that happened, a sentence for each kind of things; none where nothing did.
std::vector<std::string> Others(const RunSummary& summary) {
    const RunCounts& counts = summary.counts;
    const char* const values = counts.tagValuesStored == 1 ? "value" : "values";
    std::vector<std::string> sentences{
        Told("Files",
             {{counts.filesRenamed, "renamed"},
              {counts.filesRemoved, summary.keepsRemoved ? "moved to Removed" : "deleted for good"},
              {counts.filesCopied, "copied"}}),
        Told("Stored paths", {{counts.rowsRepointed, "changed"}}),
        Told("Playlists", {{counts.playlistsWritten, "written"},
                           {counts.playlistsRewritten, "rewritten"},
                           {counts.playlistsRemoved, "removed"}}),
        Told("Tags", {{counts.tagsWritten, "written"},
                      {counts.tagValuesStored, fmt::format("{} taken into the database", values)}}),
        Told("Covers", {{counts.imagesAdded, "added"},
                        {counts.imagesChanged, "changed"},
                        {counts.imagesRemoved, "removed"}}),
        Told("Download table",
             {Added(counts.songsAdded, "song"), Added(counts.artistsAdded, "artist")}),
        Told("Pages", {{counts.pagesWritten, "written"}}),
    };
    std::erase(sentences, "");
    return sentences;
}

/// What a person has to know of the counts.
std::vector<std::string> Remarks(const RunSummary& summary) {
    std::vector<std::string> sentences;
    if (summary.counts.leftOut > 0) {
        sentences.push_back(fmt::format("{} left out, see 'quillon check'.",
                                        CountText(summary.counts.leftOut, "music file")));
    }
    if (summary.braked) sentences.emplace_back(BrakeHeld);
    if (!summary.saved) sentences.emplace_back(NotAllSaved);
    return sentences;
}

/// The same and the remarks, or that nothing happened, where that is certain.
std::vector<std::string> OthersOr(const RunSummary& summary, const char* nothing) {
    std::vector<std::string> sentences = Others(summary);
    if (sentences.empty() && summary.saved) sentences.emplace_back(nothing);
    std::ranges::move(Remarks(summary), std::back_inserter(sentences));
    return sentences;
}

std::string JoinedAll(const std::vector<std::string>& sentences) {
    std::string text;
    for (const std::string& sentence : sentences)
        text = Joined(text, sentence);
    return text;
}

/// Sentences in lines of so many columns, none divided unless it is longer than a line.
std::vector<std::string> InLines(const std::vector<std::string>& sentences, std::size_t columns) {
    std::vector<std::string> lines;
    for (const std::string& sentence : sentences) {
        const bool joins = !lines.empty() &&
                           DisplayColumns(lines.back()) + 1 + DisplayColumns(sentence) <= columns;
        if (joins) {
            lines.back() += ' ' + sentence;
        } else {
            lines.push_back(sentence);
        }
    }
    return lines;
}

std::string Errors(const RunSummary& summary) {
    const auto& [count, lost] = std::pair(summary.counts.errors, summary.counts.recordsLost);
    const std::string errors = count == 0 ? "no errors" : CountText(count, "error");
    if (lost == 0) return count == 0 ? errors : errors + " in host.log";
    return errors + (count == 0 ? "" : " on the error output") + ", host.log lacks " +
           CountText(lost, "record");
}

/// "Done in 0:01:02; 2 errors in host.log", without the full stop.
std::string OutcomeLine(const RunSummary& summary) {
    const std::string errors = Errors(summary);
    const std::string elapsed = DurationText(summary.elapsed);
    switch (summary.outcome) {
        case RunOutcome::NothingRan:
            return "Nothing ran; " + errors;
        case RunOutcome::Aborted:
            return fmt::format("{} after {}; {}", summary.stopped ? "Stopped" : "Aborted", elapsed,
                               errors);
        case RunOutcome::Completed:
            break;
    }
    return fmt::format("Done in {}; {}", elapsed, errors);
}

/// The same for a narrow place: where to find the errors matters more than the duration.
std::string ShortOutcome(const RunSummary& summary) {
    const char* const word = summary.outcome != RunOutcome::Aborted ? "Done"
                             : summary.stopped                      ? "Stopped"
                                                                    : "Aborted";
    return fmt::format("{}; {}", word, Errors(summary));
}

/// What a record at the end of the first line is introduced by; empty where none belongs there.
std::string Introduction(const RunSummary& summary) {
    const RunCounts& counts = summary.counts;
    if (counts.errors > 0 || counts.recordsLost > 0) return OutcomeLine(summary) + ", last: ";
    return summary.outcome == RunOutcome::NothingRan ? "Nothing ran: " : "";
}

std::string FirstLine(const RunSummary& summary, std::string_view record, std::size_t columns) {
    const std::string introduction = Introduction(summary);
    const std::size_t taken = introduction.size();
    if (taken > 0 && !record.empty() && taken + LeastRecordColumns <= columns)
        return introduction + ShortenMiddle(OneLine(record), columns - taken);
    const std::string outcome = OutcomeLine(summary) + '.';
    const bool fits = outcome.size() <= columns || summary.outcome == RunOutcome::NothingRan;
    return FitColumns(fits ? outcome : ShortOutcome(summary) + '.', columns);
}

std::string MusicLine(const RunSummary& summary, bool withUnchanged) {
    const std::string text = AlbumsAndTracks(summary.counts, withUnchanged);
    return text.empty() ? "No album or track was changed." : text;
}

}  // namespace

std::vector<std::string> SummaryLines(const RunSummary& summary) {
    if (summary.outcome == RunOutcome::NothingRan)
        return {OutcomeLine(summary) + '.', NothingWasChanged, SeeCheck};
    return {OutcomeLine(summary) + '.', MusicLine(summary, true),
            JoinedAll(OthersOr(summary, "No file, playlist or tag was changed."))};
}

std::vector<std::string> SummaryLines(const RunSummary& summary, std::string_view record,
                                      std::size_t columns) {
    std::vector<std::string> lines{"", NothingWasChanged, SeeCheck};
    if (summary.outcome != RunOutcome::NothingRan) {
        std::string music = MusicLine(summary, true);
        if (DisplayColumns(music) > columns) music = MusicLine(summary, false);
        lines = InLines(OthersOr(summary, "No file, playlist or tag was changed."), columns);
        lines.insert(lines.begin(), {"", std::move(music)});
    }
    for (std::string& line : lines)
        line = FitColumns(line, columns);
    lines[0] = FirstLine(summary, record, columns);
    return lines;
}

std::string SummaryText(const RunSummary& summary) {
    const std::string outcome = OutcomeLine(summary) + '.';
    if (summary.outcome == RunOutcome::NothingRan) return Joined(outcome, SeeCheck);
    const std::string music = AlbumsAndTracks(summary.counts, true);
    const std::vector<std::string> others =
        music.empty() ? OthersOr(summary, NothingWasChanged) : OthersOr(summary, "");
    return Joined(outcome, Joined(music, JoinedAll(others)));
}

std::vector<std::string> LossLines(const RunSummary& summary, std::size_t mostNames) {
    std::vector<std::string> lines;
    for (std::size_t i = 0; i < Removables.size(); ++i) {
        const Removals::Gone& gone = summary.gone.at(i);
        if (gone.count == 0) continue;
        lines.push_back(NumberOf(gone.count, Removables.at(i)) + " removed:");
        const std::size_t shown = std::min(gone.names.size(), mostNames);
        for (std::size_t name = 0; name < shown; ++name)
            lines.push_back("   " + OneLine(gone.names[name]));
        if (gone.count > shown) lines.push_back(fmt::format("   and {} more", gone.count - shown));
    }
    return lines;
}

std::vector<std::string> LossLines(const RunSummary& summary, std::size_t columns,
                                   std::size_t mostLines) {
    for (std::size_t names = Removals::MostNames; names > 0; --names) {
        std::vector<std::string> lines = LossLines(summary, names);
        if (lines.size() > mostLines) continue;
        for (std::string& line : lines)
            line = ShortenMiddle(line, columns);
        return lines;
    }
    return {};
}

std::vector<std::string> LostRecordsLines(const LostRecords& lost, const RunCounts& counts) {
    if (counts.recordsLost == 0) return {};
    std::vector<std::string> lines{fmt::format("quillon: host.log lacks {}: {}.",
                                               CountText(counts.recordsLost, "record"),
                                               OneLine(lost.reason))};
    for (const std::string& error : lost.errors)
        lines.push_back("   " + OneLine(error));
    if (counts.errors > lost.errors.size() && !lost.errors.empty())
        lines.push_back(fmt::format("   and more, {} in all", CountText(counts.errors, "error")));
    return lines;
}

int ExitStatus(const RunSummary& summary) {
    switch (summary.outcome) {
        case RunOutcome::NothingRan:
            return 2;
        case RunOutcome::Aborted:
            return summary.stopped ? 1 : 3;
        case RunOutcome::Completed:
            break;
    }
    return summary.counts.errors + summary.counts.recordsLost == 0 && !summary.stopped ? 0 : 1;
}

}  // namespace quillon
