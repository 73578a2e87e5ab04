#include "app/journal/journal_reader.h"

#include <algorithm>
#include <fstream>
#include <functional>
#include <optional>
#include <system_error>

#include "app/journal/journal_lines.h"
#include "app/journal/net_changes.h"
#include "platform/failure.h"

namespace quillon {
namespace {

namespace fs = std::filesystem;

/// Calls visit(line, whether it has its end) for each line.
void VisitLines(const fs::path& file,
                const std::function<void(const std::string& line, bool isEnded)>& visit) {
    std::ifstream text(file, std::ios::binary);
    if (!text || fs::is_directory(file))
        throw Failure(FailureNumber::PathFileAccess, file.string());
    std::string line;
    while (std::getline(text, line))
        visit(line, !text.eof());
    if (text.bad()) throw Failure(FailureNumber::PathFileAccess, file.string());
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
    void operator()(const RunEnded& ended) const { run.ended = ended; }
    void operator()(const RowChange& change) const {
        run.changes += std::size_t{IsOfLibrary(change)};
    }
    void operator()(const FileChange& change) const {
        run.changes += std::size_t{IsOfLibrary(change)};
    }
    template <typename Other>
    void operator()(const Other&) const {}
};

}  // namespace

JournalContent ReadJournal(const fs::path& file) {
    JournalContent content;
    content.stamp = file.stem().string();
    std::size_t number = 0;
    VisitLines(file, [&](const std::string& line, bool isEnded) {
        ++number;
        try {
            content.records.push_back(FromLine(line));
        } catch (const DamagedLine& damaged) {
            content.damaged.push_back(
                {.line = number, .reason = damaged.what(), .isCutShort = !isEnded});
        }
    });
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
    VisitLines(file, [&](const std::string& line, bool) {
        std::optional<ChangeRecord> record;
        try {
            record = FromLine(line);
        } catch (const DamagedLine&) {
            return;  // it is told where the journal is read
        }
        visit(*record);
    });
}

PastRun LookAtJournal(const fs::path& file) {
    PastRun run;
    run.started.stamp = file.stem().string();
    VisitRecords(file, [&run](const ChangeRecord& record) { std::visit(Facts{run}, record); });
    return run;
}

}  // namespace quillon
