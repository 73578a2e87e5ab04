#include "app/commands/preview_command.h"

#include <filesystem>
#include <fmt/format.h>
#include <ostream>
#include <string>
#include <utility>
#include <vector>

#include "app/checks/writable.h"
#include "app/journal/change_text.h"
#include "app/journal/journal_file.h"
#include "app/journal/journal_lines.h"
#include "app/journal/net_changes.h"
#include "app/journal/row_names.h"
#include "app/journal/row_recorder.h"
#include "app/local_host.h"
#include "app/removed_music.h"
#include "app/run_recording.h"
#include "app/silent_host.h"
#include "app/text/display_text.h"
#include "app/version.h"
#include "app/views/preview_view.h"
#include "changes/journalled_files.h"
#include "changes/preview_files.h"
#include "driver/library_form.h"
#include "driver/modes.h"
#include "jet/error.h"
#include "jet/lock.h"
#include "run/log.h"
#include "run/run.h"
#include "taglib/tag_library.h"

namespace quillon {
namespace {

/// What a preview tells of. For a program each record is printed as it comes.
class PreviewSink : public ChangeSink {
  public:
    /// `out` is null where a person is told.
    explicit PreviewSink(std::ostream* out) : out_(out) {}

    void Note(const ChangeRecord& record) override {
        if (out_ != nullptr) *out_ << lines_.Of(record) << '\n';
        net_.Add(record);
        if (std::holds_alternative<ModeChosen>(record) || std::holds_alternative<LogLine>(record))
            remarks_.push_back(record);
    }
    void MakeDurable() override {}

    NetChanges TakeChanges() { return net_.Take(); }
    /// The mode, and the log.
    const std::vector<ChangeRecord>& Remarks() const { return remarks_; }

  private:
    std::ostream* out_;
    JournalLines lines_;
    NetChangesCollector net_;
    std::vector<ChangeRecord> remarks_;
};

PreviewRights RightsOn(PathResolver& resolver) {
    return {.mayWrite =
                [&resolver](const std::string& path) {
                    const std::filesystem::path local = resolver.Local(path);
                    std::error_code unknown;
                    return !std::filesystem::exists(local, unknown) || IsWritable(local);
                },
            .isLink =
                [&resolver](const std::string& path) {
                    std::error_code unknown;
                    return std::filesystem::is_symlink(resolver.Local(path), unknown);
                }};
}

std::string OutcomeWord(RunOutcome outcome) {
    return outcome == RunOutcome::Completed ? "completed" : "nothing ran";
}

/// Why a run would not get the database that the preview has looked at; "" where it would.
std::string ObjectionTo(const std::filesystem::path& database) try {
    const jet::LockState lock = jet::LookAtLock(database);
    if (lock.kind == jet::LockState::Kind::InUse) return lock.objection;
    std::error_code unknown;
    const auto folder = std::filesystem::canonical(database, unknown).parent_path();
    if (unknown || IsWritable(folder)) return "";
    return fmt::format("its folder {} cannot be written", folder.string());
} catch (const jet::Error&) {
    return "";  // then the preview has said so itself
}

void TellBrake(bool braked, std::ostream& out) {
    if (!braked) return;
    out << "The brake would stop this run from removing anything: the log says why. If the\n"
           "removals are right, 'quillon preview --allow-removals' shows all of them.\n\n";
}

void Tell(const std::vector<ChangeRecord>& records, const NetChanges& changes, bool isBraked,
          const std::filesystem::path& database, std::ostream& out) {
    const RowNames names(database, changes.rows);
    const ChangeTextOptions options{
        .nameOf = [&names](const RowChange& change) { return names.Of(change); }};
    for (const ChangeRecord& record : records) {
        if (const auto* const mode = std::get_if<ModeChosen>(&record); mode && !mode->mode.empty())
            out << fmt::format("A run would now: {}\n\n", OneLine(mode->mode));
    }
    TellBrake(isBraked, out);
    const std::string text = ChangeText(changes, options), log = LogText(records, options);
    out << text << (text.empty() || log.empty() ? "" : "\n") << log;
    if (!text.empty() || !log.empty()) out << '\n';
}

void TellVerdict(int status, std::ostream& out) {
    switch (status) {
        case DoneStatus:
            out << "Nothing would change.\n";
            break;
        case FaultsFoundStatus:
            out << "Nothing has been changed yet; 'quillon run' does it.\n";
            break;
        default:
            out << "What a run would do could not be found out.\n";
    }
}

}  // namespace

int PreviewRun(const PreviewRequest& request, Console console) {
    Run* current = nullptr;
    LocalHost local(request.host, [&current](LogKind kind, const std::string& message) {
        if (current == nullptr) return;
        if (kind == LogKind::Error) return LogError(*current, LogSource, message);
        WriteLog(*current, LogSource, message);
    });
    PreviewSink sink(request.json ? &console.out : nullptr);
    const std::string stamp = FreeStamp(ChangesFolder(local.host.Folder()), local.clock);
    sink.Note(RunStarted{
        .stamp = stamp, .version = std::string(ProgramVersion), .mode = "", .undoes = ""});
    RowRecorder rows(sink);
    local.databases.KeepInMemory();
    local.databases.SetObserver(&rows);
    RemovedFiles removed(RemovedMusicFolder(local.host), local.clock);
    const bool keepsRemoved = ReadRemovedMusicSetting(local.host).keep;
    PreviewFiles preview(local.files, local.clock, RightsOn(local.resolver));
    JournalledFiles files(preview, sink, KeptBeside(stamp, current, local, removed, keepsRemoved));
    SilentHost host(local.host);
    PreviewView view(sink, [&] {
        const Mode* const mode = SelectMode(current->settings);
        return mode == nullptr ? std::string() : std::string(mode->what);
    });
    Run run(host, files, local.clock, view);
    current = &run;
    TagLibrary tags;
    run.tagFormats = &tags;
    run.thumbnails = local.thumbnails.get();
    run.removals.allAllowed = request.allowRemovals;
    const RunOutcome outcome = LibraryForm(run, local.databases, ProgramVersion).Form_Load();
    run.ForgetTables();

    std::filesystem::path database;
    if (outcome == RunOutcome::Completed) {
        database = local.resolver.Local(run.settings.Nirvis_CDJ_DB);
        if (const std::string objection = ObjectionTo(database); !objection.empty())
            sink.Note(LogLine{true, "A run would not get the database now: " + objection});
    }
    const NetChanges changes = sink.TakeChanges();
    const int status = outcome != RunOutcome::Completed ? RefusedStatus
                       : ChangesLibrary(changes)        ? FaultsFoundStatus
                                                        : DoneStatus;
    const bool isBraked = run.Report().braked;
    sink.Note(RunEnded{.outcome = OutcomeWord(outcome),
                       .status = status,
                       .braked = isBraked,
                       .duration = view.Elapsed()});
    if (request.json) return status;
    Tell(sink.Remarks(), changes, isBraked, database, console.out);
    TellVerdict(status, console.out);
    return status;
}

}  // namespace quillon
