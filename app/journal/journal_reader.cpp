#include "app/journal/journal_reader.h"

#include <algorithm>
#include <fstream>
#include <functional>
#include <optional>
#include <system_error>
#include <utility>
#include <vector>

#include "app/journal/journal_lines.h"
#include "app/journal/net_changes.h"
#include "platform/failure.h"

namespace quillon {
namespace {

namespace fs = std::filesystem;

/// Calls visit(line, whether it has its end) for each line, until it says that it is enough.
void VisitLines(const fs::path& file,
                const std::function<bool(const std::string& line, bool isEnded)>& visit) {
    std::ifstream text(file, std::ios::binary);
    if (!text || fs::is_directory(file))
        throw Failure(FailureNumber::PathFileAccess, file.string());
    std::string line;
    while (std::getline(text, line))
        if (!visit(line, !text.eof())) return;
    if (text.bad()) throw Failure(FailureNumber::PathFileAccess, file.string());
}

/// The last whole line of a file; "" where it is longer than the line with which a run ends.
std::string LastLine(const fs::path& file) {
    constexpr std::streamoff MostRead = 4096;
    std::ifstream text(file, std::ios::binary | std::ios::ate);
    const std::streamoff size = text.tellg();
    text.seekg(std::max(size - MostRead, std::streamoff{0}));
    std::string end(static_cast<std::size_t>(std::clamp(size, std::streamoff{0}, MostRead)), '\0');
    if (!text.read(end.data(), static_cast<std::streamsize>(end.size())) || !end.ends_with('\n'))
        return "";
    end.pop_back();
    const std::size_t start = end.rfind('\n');
    return start == std::string::npos ? "" : end.substr(start + 1);
}

std::optional<ChangeRecord> RecordIn(const std::string& line) {
    try {
        return FromLine(line);
    } catch (const DamagedLine&) {
        return std::nullopt;  // it is told where the whole journal is read
    }
}

/// What a run's own records say of it.
struct Facts {
    PastRun& run;

    void operator()(const RunStarted& started) const {
        const std::string stamp = run.started.stamp;
        run.started = started;
        run.started.stamp = stamp;
    }
    void operator()(const ModeChosen& chosen) const { run.started.mode = chosen.mode; }
    void operator()(const RowsSaved&) const { run.hasSavedRows = true; }
    void operator()(const RunEnded& ended) const { run.ended = ended; }
    template <typename Other>
    void operator()(const Other&) const {}
};

}  // namespace

std::optional<RunEnded> EndOfRun(const fs::path& file) {
    const std::string line = LastLine(file);
    const std::optional<ChangeRecord> record = line.empty() ? std::nullopt : RecordIn(line);
    const auto* const end = record ? std::get_if<RunEnded>(&*record) : nullptr;
    return end != nullptr ? std::optional(*end) : std::nullopt;
}

JournalContent VisitJournal(const fs::path& file,
                            const std::function<void(ChangeRecord&&)>& visit) {
    JournalContent content;
    content.stamp = file.stem().string();
    std::size_t number = 0;
    VisitLines(file, [&](const std::string& line, bool isEnded) {
        ++number;
        std::optional<ChangeRecord> record;
        try {
            record = FromLine(line);
        } catch (const DamagedLine& damaged) {
            content.damaged.push_back(
                {.line = number, .reason = damaged.what(), .isCutShort = !isEnded});
            return true;
        }
        content.isWhole = std::holds_alternative<RunEnded>(*record);
        visit(std::move(*record));
        return true;
    });
    return content;
}

JournalContent ReadJournal(const fs::path& file) {
    std::vector<ChangeRecord> records;
    JournalContent content = VisitJournal(
        file, [&records](ChangeRecord&& record) { records.push_back(std::move(record)); });
    content.records = std::move(records);
    return content;
}

std::vector<fs::path> JournalsIn(const fs::path& folder) {
    std::vector<fs::path> journals;
    std::error_code error;
    for (fs::directory_iterator entry(folder, error), end; !error && entry != end;
         entry.increment(error))
        if (entry->path().extension() == ".jsonl") journals.push_back(entry->path());
    std::ranges::sort(journals, [](const fs::path& left, const fs::path& right) {
        return CompareStamps(left.stem().string(), right.stem().string()) < 0;
    });
    return journals;
}

void VisitRecords(const fs::path& file, const std::function<void(const ChangeRecord&)>& visit) {
    VisitJournal(file, visit);
}

PastRun LookAtJournal(const fs::path& file) {
    PastRun run;
    ChangeCount changes;
    run.started.stamp = file.stem().string();
    std::optional<RunEnded> end = EndOfRun(file);
    // Then all of it has to be read to know how many there are, and whether rows were saved.
    if (end && (!end->changes || end->outcome != "completed")) end.reset();
    VisitLines(file, [&](const std::string& line, bool) {
        const std::optional<ChangeRecord> record = RecordIn(line);
        if (!record) return true;
        const bool isChange = std::holds_alternative<RowChange>(*record) ||
                              std::holds_alternative<DateReplaced>(*record) ||
                              std::holds_alternative<FileChange>(*record);
        // Nothing behind the mode says more of the run, but its end; dated copies come before it.
        if (end && isChange && !run.started.mode.empty()) return false;
        changes.Add(*record);
        std::visit(Facts{run}, *record);
        return true;
    });
    run.changes = end ? *end->changes : changes.Value();
    if (end) run.ended = end;
    return run;
}

}  // namespace quillon
