#include "app/command_line.h"

#include <CLI/CLI.hpp>
#include <fmt/format.h>
#include <map>
#include <string>
#include <vector>

#include "app/db_grammar.h"
#include "app/outside_host.h"
#include "app/usage/describe_grammar.h"
#include "app/usage/help_text.h"
#include "app/usage/path_words.h"
#include "app/usage/usage_problem.h"
#include "app/version.h"
#include "driver/nearest_name.h"

namespace quillon {
namespace {

const std::map<std::string, ViewKind> ViewNames{{"auto", ViewKind::Auto},
                                                {"window", ViewKind::Window},
                                                {"terminal", ViewKind::Terminal},
                                                {"plain", ViewKind::Plain}};
const std::map<std::string, LibraryLayout> LayoutNames{{"tree", LibraryLayout::Tree},
                                                       {"flat", LibraryLayout::Flat}};

constexpr const char* ProgramFooter =
    R"(Exit status: 0 done, 1 done but errors were logged, 2 nothing ran, 3 aborted.

A first library:
  quillon init ~/shelf --music ~/Music    a host folder, a new database
  quillon check --host ~/shelf            whether a run could start
  quillon preview --host ~/shelf          what it would change
  quillon run --host ~/shelf              the run
  quillon help run                        all about runs)";

constexpr const char* RunFooter =
    R"(The settings in Quillon.ini choose what a run does. To abort it, press Ctrl-C, the key a on the
terminal screen, or Abort in the window, or send SIGTERM. Closing the terminal aborts it, too, unless
nohup started the run. A second signal ends it at once.

The brake: a run that would remove a lot, or everything in a folder that has no music left, removes
nothing, says so and ends with status 1. The usual cause is a drive that is not mounted. If you have
deleted music on purpose, --allow-removals lets the removals through once. The limits are in section
[Safety] of host.ini.

Examples:
  quillon run --host ~/shelf
  quillon run --host /srv/shelf --view plain >> /var/log/shelf.log
  quillon run --host /srv/shelf --quiet    in a crontab: errors, losses and a summary by mail
  quillon run --host ~/shelf --allow-removals    after you have deleted half of the music)";

constexpr const char* PreviewFooter =
    R"(It does all that the run would do, on a copy in memory: no file, no row and no time of a file changes,
and no log is written. What is shown is what a run would do now; when files change in between, it
does other things. Values that depend on the moment (times, random numbers) are not announced.

Exit status: 0 a run would change nothing, 1 it would change something, 2 that could not be found
out.

Examples:
  quillon preview --host ~/shelf
  quillon preview --host ~/shelf --allow-removals    what the brake would else hold back
  quillon preview --host ~/shelf --json | jq 'select(.record == "file")')";

constexpr const char* HelpFooter = R"(Examples:
  quillon help run
  quillon help db query)";

constexpr const char* InitFooter =
    R"(DIR gets Quillon.ini (every setting, explained), host.ini (the drive table), folders for playlists,
covers and data and, without --database, the new database jukebox.mdb. Nothing that exists is
overwritten. With the layout tree, artist folders hold album folders; with flat, files named
Artist_Song.mp3 are side by side.

Examples:
  quillon init ~/shelf --music ~/Music
  quillon init /srv/shelf --music /srv/music --database cdj.mdb --layout flat)";

constexpr const char* CheckFooter =
    R"(The report has every setting with the value that a run would use, the folders, the database with
its tables and fields, and the mode that would run with its phases and backups. At the end it lists
what would prevent a run (Problems) and what looks odd (Worth a look), with what to do about each. The
last line is the verdict. Exit status 0 when a run could start and do what it is for, else 2.

Example:
  quillon check --host ~/shelf)";

constexpr const char* ChangesFooter =
    R"(Every run writes down what it changes in Changes in the host folder, before it does: rows of the
database, files renamed, removed, copied and written. Without RUN the last run is shown. A RUN is called
by the time it began, as --list shows it. What a killed run had planned and not done is told apart.
Exit status 0; 1 where lines of the journal cannot be read, which are named; 2 where there is none.

Examples:
  quillon changes --host ~/shelf                        what the last run did
  quillon changes --list --host ~/shelf                 all runs
  quillon changes 2026-11-21_07-13-05 --host ~/shelf    one of them)";

constexpr const char* UndoFooter =
    R"(Takes the last run back, or with RUN all runs from that one on: names of files, music from Removed,
tags, playlists, rows of the database, the pages of the album picker. Files that were copied into the
library go to Removed. It shows first what it would do and asks. What was changed since the run stays as
it is and is named. An undo is a run itself: with its own RUN it can be taken back, too. One that was cut
off goes on when it is started again. Dated backups stay.
Exit status 0 when all is back, 1 when something stays as it is, 2 when nothing was done.

Examples:
  quillon undo --host ~/shelf                        the last run
  quillon undo --host ~/shelf --yes                  without a question, for scripts
  quillon undo 2026-11-21_07-13-05 --host ~/shelf    that run and all behind it)";

constexpr const char* ServeFooter =
    R"(The pages are those that a run with AlbumPicker=1 has made below HTML in the host folder. Only
browsers on this computer can connect. The player's page lists what it was asked for and plays
nothing. Nothing is changed. Ctrl-C or SIGTERM ends it.

Examples:
  quillon serve --host ~/shelf
  quillon serve --host ~/shelf --port 0    any port that is free)";

constexpr const char* BackupsFooter =
    R"(A backup is what a run has copied before it changed anything: the database, the playlist folders or
both. Its name is the time in the names of its copies. Keep in section [Backups] of host.ini says how
many stay; without it all do.

Examples:
  quillon backups --host ~/shelf
  quillon backups --host ~/shelf --json    a JSON object a line)";

constexpr const char* RestoreFooter =
    R"(Puts the database and the playlists of one backup back in their places, as they were before the run
that made it. What is there now becomes a backup first, so a restore can be taken back in the same
way. No other program may have the database open. Music files and tags are not part of a backup.

Examples:
  quillon backups --host ~/shelf                      the names of all backups
  quillon restore 11212026_43001_AM --host ~/shelf    shows what it would do, and asks
  quillon restore 11212026_43001_AM --host ~/shelf --yes)";

/// The grammar and the places its values go to.
class Grammar {
  public:
    Grammar() {
        app_.set_version_flag("--version", fmt::format("quillon {}", ProgramVersion),
                              "Print the version and exit");
        app_.require_subcommand(0, 1);
        TakeSlashesAsPaths(app_);
        app_.footer(ProgramFooter);
        AddRunOptions(app_);
        run_->footer(RunFooter);
        AddRunOptions(*run_);
        DefinePreview();
        DefineInit();
        check_->footer(CheckFooter);
        AddHostOption(*check_);
        DefineChanges();
        DefineUndo();
        DefineServe();
        DefineBackups();
        help_->footer(HelpFooter);
        help_->add_option("COMMAND", helpWords_, "The command, such as run or db query");
    }

    CommandDescription Description() const { return Describe(app_); }

    Request Parse(std::span<const char* const> arguments) {
        try {
            app_.parse(static_cast<int>(arguments.size()), arguments.data());
            RefuseRunOptionsOfOtherCommands();
            RefuseQuietScreens();
        } catch (const CLI::CallForVersion& version) {
            return TextAnswer{fmt::format("{}\n", version.what())};
        } catch (const CLI::Success&) {
            return Help();
        } catch (const CLI::ParseError& error) {
            return UsageError(AskedCommand(app_), UsageProblem(app_, Description(), error));
        }
        return help_->parsed() ? HelpOn(helpWords_) : Chosen();
    }

  private:
    static TextAnswer UsageError(const std::string& command, const std::string& problem) {
        return {fmt::format("quillon: {}\nTry '{} --help'.\n", problem, command), true};
    }

    /// The help that an option has asked for. A command that does not exist has none.
    TextAnswer Help() const {
        const CommandDescription program = Description();
        const CommandDescription* const asked = FindCommand(program, AskedCommand(app_));
        const std::string unknown = FindLeftOver(app_).word;
        if (!unknown.empty() && !unknown.starts_with('-') && !asked->commands.empty())
            return UsageError(asked->name, UnexpectedWord(program, *asked, unknown));
        return {HelpText(*asked)};
    }

    TextAnswer HelpOn(const std::vector<std::string>& words) const {
        const CommandDescription program = Description();
        const CommandDescription* asked = &program;
        for (const std::string& word : words) {
            const auto* const below = FindCommand(program, asked->name + ' ' + word);
            if (below == nullptr)
                return UsageError(asked->name, UnexpectedWord(program, *asked, word));
            asked = below;
        }
        return {HelpText(*asked)};
    }

    void AddHostOption(CLI::App& command) {
        command
            .add_option("--host", host_,
                        "Host folder (default: $QUILLON_HOST, else the current folder)")
            ->type_name("DIR");
    }

    void AddRunOptions(CLI::App& command) {
        AddHostOption(command);
        AddChoice(command, "--view", view_, ViewNames, "What the run shows (default: auto)");
        command.add_flag("--quiet", quiet_,
                         "Print only errors, what was removed and a summary; for cron");
        command.add_flag("--allow-removals", allowRemovals_,
                         "Let this run remove more than [Safety] in host.ini allows");
    }

    /// An option whose values are words.
    template <typename Value>
    static void AddChoice(CLI::App& command, const std::string& name, Value& value,
                          const std::map<std::string, Value>& choices,
                          const std::string& description) {
        const auto choose = [name, &value, &choices](const CLI::results_t& results) {
            const auto found = choices.find(results.front());
            if (found == choices.end())
                throw CLI::ValidationError(name, Expected(choices, results.front()));
            value = found->second;
            return true;
        };
        std::string words;
        for (const auto& choice : choices)
            words += (words.empty() ? "" : "|") + choice.first;
        command.add_option(name, choose, description)->type_name(words);
    }

    template <typename Value>
    static std::string Expected(const std::map<std::string, Value>& choices,
                                const std::string& given) {
        std::string text = "expected one of";
        std::vector<std::string_view> words;
        for (const auto& choice : choices) {
            text += ' ' + choice.first;
            words.push_back(choice.first);
        }
        const std::string_view meant = NearestName(given, words);
        return meant.empty() ? text : fmt::format("{}; did you mean {}?", text, meant);
    }

    void DefinePreview() {
        preview_->footer(PreviewFooter);
        AddHostOption(*preview_);
        preview_->add_flag("--allow-removals", allowRemovals_,
                           "Show what a run with this option would do");
        preview_->add_flag("--json", previewsAsJson_, "Print a JSON object a line");
    }

    void DefineInit() {
        init_->footer(InitFooter);
        init_->add_option("DIR", initRequest_.host, "The host folder to make")
            ->required()
            ->type_name("");
        init_->add_option("--music", initRequest_.music, "The music folder")
            ->required()
            ->type_name("FOLDER");
        init_
            ->add_option("--database", initRequest_.database,
                         "An existing .mdb file to use where it is (default: a new one in DIR)")
            ->type_name("FILE");
        AddChoice(*init_, "--layout", initRequest_.layout, LayoutNames,
                  "How albums are stored there (default: tree)");
    }

    void DefineChanges() {
        changes_->footer(ChangesFooter);
        AddHostOption(*changes_);
        changes_->add_option("RUN", changesRequest_.run, "The run, such as 2026-11-21_07-13-05")
            ->type_name("");
        changes_->add_flag("--list", changesRequest_.list, "List all runs");
        changes_->add_flag("--json", changesRequest_.json, "Print a JSON object a line");
    }

    void DefineUndo() {
        undo_->footer(UndoFooter);
        AddHostOption(*undo_);
        undo_->add_option("RUN", undoRequest_.run, "The first run to take back")->type_name("");
        undo_->add_flag("--yes", undoRequest_.yes, "Do it without a question");
    }

    void DefineServe() {
        serve_->footer(ServeFooter);
        AddHostOption(*serve_);
        serve_
            ->add_option(
                "--port", serveRequest_.port,
                fmt::format("Port to listen on, 0 for any (default: {})", serveRequest_.port))
            ->check([](const std::string& text) {
                std::string port = text;
                const bool isPort = CLI::Range(0, 65535)(port).empty();
                return std::string(isPort ? "" : "expected a number from 0 to 65535");
            })
            ->type_name("N");
    }

    void DefineBackups() {
        backups_->footer(BackupsFooter);
        AddHostOption(*backups_);
        backups_->add_flag("--json", backupsRequest_.json, "Print a JSON object for each backup");
        restore_->footer(RestoreFooter);
        restore_->add_option("STAMP", restoreRequest_.backup, "The name of the backup")
            ->required()
            ->type_name("");
        AddHostOption(*restore_);
        restore_->add_flag("--yes", restoreRequest_.yes, "Do not ask; for scripts");
    }

    void RefuseRunOptionsOfOtherCommands() const {
        const auto chosen = app_.get_subcommands();
        if (chosen.empty() || chosen.front() == run_) return;
        for (const char* const option : {"--view", "--quiet", "--allow-removals"}) {
            if (app_.count(option) == 0) continue;
            const CommandDescription program = Description();
            const CommandDescription* const asked = FindCommand(program, AskedCommand(app_));
            throw CLI::ValidationError(UnexpectedWord(program, *asked, option));
        }
    }

    void RefuseQuietScreens() const {
        if (!quiet_ || view_ == ViewKind::Auto || view_ == ViewKind::Plain) return;
        throw CLI::ValidationError("--quiet", "goes with plain lines only; leave --view out");
    }

    std::filesystem::path HostFolder() const { return host_.empty() ? UsualHostFolder() : host_; }

    Request Chosen() const {
        if (preview_->parsed())
            return PreviewRequest{HostFolder(), allowRemovals_, previewsAsJson_};
        if (init_->parsed()) return initRequest_;
        if (check_->parsed()) return CheckRequest{HostFolder()};
        if (changes_->parsed()) {
            return ChangesRequest{HostFolder(), changesRequest_.run, changesRequest_.list,
                                  changesRequest_.json};
        }
        if (undo_->parsed()) return UndoRequest{HostFolder(), undoRequest_.run, undoRequest_.yes};
        if (serve_->parsed()) return ServeRequest{HostFolder(), serveRequest_.port};
        if (backups_->parsed()) return BackupsRequest{HostFolder(), backupsRequest_.json};
        if (restore_->parsed())
            return RestoreRequest{HostFolder(), restoreRequest_.backup, restoreRequest_.yes};
        if (const auto chosen = db_.Chosen()) return *chosen;
        return RunRequest{HostFolder(), quiet_ ? ViewKind::Plain : view_, quiet_, allowRemovals_};
    }

    CLI::App app_{"Keeps MP3 folders, a jukebox database, tags and playlists consistent",
                  "quillon"};
    CLI::App* run_ =
        app_.add_subcommand("run", "Run what Quillon.ini asks for; the default command");
    CLI::App* preview_ =
        app_.add_subcommand("preview", "Show all that a run would change; change nothing");
    CLI::App* init_ = app_.add_subcommand("init", "Make a host folder");
    CLI::App* check_ = app_.add_subcommand("check", "Show what a run would do; change nothing");
    CLI::App* changes_ = app_.add_subcommand("changes", "Show what runs have changed");
    CLI::App* undo_ = app_.add_subcommand("undo", "Take the last run back");
    CLI::App* serve_ = app_.add_subcommand("serve", "Show the album picker in a browser");
    CLI::App* backups_ = app_.add_subcommand("backups", "List what runs have backed up");
    CLI::App* restore_ = app_.add_subcommand("restore", "Put a backup back in its place");
    DbGrammar db_{*app_.add_subcommand("db", "Work on a database file from the shell")};
    CLI::App* help_ = app_.add_subcommand("help", "Show the help of a command");

    std::vector<std::string> helpWords_;
    std::filesystem::path host_;
    ViewKind view_ = ViewKind::Auto;
    bool quiet_ = false, allowRemovals_ = false, previewsAsJson_ = false;
    InitRequest initRequest_;
    ChangesRequest changesRequest_;
    UndoRequest undoRequest_;
    ServeRequest serveRequest_;
    BackupsRequest backupsRequest_;
    RestoreRequest restoreRequest_;
};

}  // namespace

Request ParseCommandLine(std::span<const char* const> arguments) {
    return Grammar().Parse(arguments);
}

CommandDescription DescribeCommandLine() {
    return Grammar().Description();
}

}  // namespace quillon
