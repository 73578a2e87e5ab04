#include "app/commands/undo_command.h"

#include <algorithm>
#include <fmt/format.h>
#include <iostream>
#include <span>
#include <string>
#include <unistd.h>

#include "app/commands/undo_work.h"
#include "app/confirmation.h"
#include "app/journal/change_text.h"
#include "app/local_host.h"
#include "app/text/display_text.h"
#include "platform/failure.h"
#include "run/log.h"

namespace quillon {
namespace {

void ShowRefused(std::ostream& out, const std::vector<std::string>& refused) {
    constexpr std::size_t MostShown = 100;
    if (refused.empty()) return;
    out << fmt::format("\nStays as it is: {}\n", refused.size());
    for (const std::string& line : std::span(refused).first(std::min(refused.size(), MostShown)))
        out << "  " << OneLine(line) << '\n';
    if (refused.size() > MostShown)
        out << fmt::format("  and {} more\n", refused.size() - MostShown);
}

void ShowPlan(std::ostream& out, const UndoWork& work, const UndoWork::Result& plan) {
    for (const std::string& line : work.Troubles())
        out << OneLine(line) << "\n\n";
    out << "This would be taken back, the last run first:\n";
    for (const PastRun& run : work.Runs())
        out << OneLine(fmt::format("  {}  {}{}", run.started.stamp, run.started.mode,
                                   run.ended ? "" : ", which was killed"))
            << '\n';
    if (!work.PartBefore().empty())
        out << fmt::format("It goes on with the undo {}, which has not done all of it.\n",
                           work.PartBefore());
    const ChangeTextOptions options{
        .nameOf = [&plan](const RowChange& change) { return plan.names.Of(change); }};
    const std::string text = ChangeText(plan.changes, options);
    out << '\n' << text;
    if (text.empty() && !plan.changes.IsEmpty())
        out << "Only what runs note for themselves beside the database.\n";
    ShowRefused(out, plan.refused);
}

bool IsAgreed(std::ostream& out) {
    if (isatty(STDIN_FILENO) == 0) {
        throw CommandError(
            "Nothing was taken back: there is no terminal to ask on; --yes does it without a "
            "question");
    }
    out << '\n';
    return IsConfirmed("Go on?", std::cin, out);
}

/// The log may be on a disk that is full: what was done is done.
void Log(LocalHost& local, const std::string& text) {
    try {
        local.host.WriteLog(LogSource, text);
    } catch (const Failure&) {
        return;
    }
}

void LogOutcome(LocalHost& local, const UndoWork& work, const UndoWork::Ended& ended) {
    Log(local, fmt::format("Undo: run {} is taken back{}; {} change{}, see 'quillon changes {}'",
                           work.Stamp(), work.Runs().size() > 1 ? " with all behind it" : "",
                           ended.changes, ended.changes == 1 ? "" : "s", ended.stamp));
    for (const std::string& line : ended.refused)
        Log(local, "Undo: stays as it is: " + line);
}

}  // namespace

int Undo(const UndoRequest& request, Console console) {
    LocalHost local(request.host, [](LogKind, const std::string&) {});
    UndoWork work(local, request.run);
    const UndoWork::Result plan = work.Plan();
    ShowPlan(console.out, work, plan);
    const bool isAny = !plan.changes.IsEmpty();
    if (!isAny) {
        console.out << "\nNothing is left to take back.\n";
        if (!plan.refused.empty()) return FaultsFoundStatus;
    } else if (!request.yes && !IsAgreed(console.out)) {
        console.out << "Nothing was taken back.\n";
        return RefusedStatus;
    }
    const UndoWork::Ended ended = work.CarryOut();
    if (isAny) {
        LogOutcome(local, work, ended);
        if (ended.refused != plan.refused) ShowRefused(console.out, ended.refused);
    }
    if (isAny || !work.PartBefore().empty()) {
        console.out << fmt::format("\nDone. 'quillon undo {}' takes this undo back{}.\n",
                                   ended.firstPart,
                                   work.PartBefore().empty() ? "" : ", the part before as well");
    }
    return ended.refused.empty() ? DoneStatus : FaultsFoundStatus;
}

}  // namespace quillon
