#include "app/command_line.h"

#include <CLI/CLI.hpp>
#include <cstdlib>
#include <fmt/format.h>
#include <map>
#include <string>

#include "app/version.h"

namespace quillon {
namespace {

const std::map<std::string, ViewKind> ViewNames{{"auto", ViewKind::Auto},
                                                {"window", ViewKind::Window},
                                                {"terminal", ViewKind::Terminal},
                                                {"plain", ViewKind::Plain}};
const std::map<std::string, LibraryLayout> LayoutNames{{"tree", LibraryLayout::Tree},
                                                       {"flat", LibraryLayout::Flat}};

constexpr const char* ProgramFooter = R"(A first library:
  quillon init ~/shelf --music ~/Music    a host folder with settings and a new database
  quillon check --host ~/shelf            what a run would do, and what stands in its way
  quillon run --host ~/shelf              the run

Exit status: 0 done, 1 done but errors were logged, 2 nothing ran, 3 aborted.)";

constexpr const char* RunFooter =
    R"(What a run does is chosen by the settings in Quillon.ini. Ctrl-C, SIGTERM, Abort in the window and, on
the terminal screen, the key a abort it, and so does a terminal that closes, unless nohup started the
run. A second signal ends it at once.

The brake: a run that would remove a lot, or all of a folder without any music, removes nothing, says
so and ends with status 1. The cause is mostly a drive that is not mounted. When you have cleared out
on purpose, --allow-removals lets it through once. [Safety] in host.ini has the limits.

Examples:
  quillon run --host ~/shelf
  quillon run --host /srv/shelf --view plain >> /var/log/shelf.log
  quillon run --host /srv/shelf --quiet    in a crontab: a mail with errors, losses and a summary
  quillon run --host ~/shelf --allow-removals    after you have deleted half of the music)";

constexpr const char* InitFooter =
    R"(DIR gets Quillon.ini (every setting, explained), host.ini (the drive table), folders for playlists,
covers and data and, without --database, the new database jukebox.mdb. Nothing that exists is
overwritten. Layout tree: artist folders that hold album folders; flat: files named
Artist_Song.mp3 side by side.

Examples:
  quillon init ~/shelf --music ~/Music
  quillon init /srv/shelf --music /srv/music --database /srv/jukebox/cdj.mdb --layout flat)";

constexpr const char* CheckFooter =
    R"(Changes nothing. Tells every setting with the value a run would use, the folders, the database with
its tables and fields, the mode that would run with its phases and backups, and then what stands in
the way (Problems) or looks odd (Worth a look), with what to do about each. The last line is the
verdict. Exit status 0 when a run could start and do what it is for, else 2.

Example:
  quillon check --host ~/shelf)";

constexpr const char* ServeFooter =
    R"(Shows what a run with AlbumPicker=1 has made below HTML in the host folder, in a browser on this
computer; no other computer can connect. The player's page only lists what it was asked for. Changes
nothing. Ctrl-C or SIGTERM ends it.

Examples:
  quillon serve --host ~/shelf
  quillon serve --host ~/shelf --port 0    any port that is free)";

constexpr const char* CreateFooter = R"(Example:
  quillon db create ~/shelf/jukebox.mdb)";

constexpr const char* QueryFooter =
    R"(The database is not changed. Dates are shown as 2006-02-03T08:00:00, Null as <null> (JSON: null).
Ctrl-C or SIGTERM ends a statement that takes long; the exit status is 3 then.

Examples:
  quillon db query cdj.mdb "SELECT Artist, Title, Tracks FROM Albums WHERE Player=1001"
  quillon db query cdj.mdb "SELECT * FROM Tracks" --json > tracks.jsonl)";

constexpr const char* ExecFooter =
    R"(All rows are changed or none. Ctrl-C or SIGTERM ends a statement that takes long; it has changed
nothing then, and the exit status is 3.

Example:
  quillon db exec cdj.mdb "UPDATE Albums SET Rating1=5 WHERE Artist='Nina Simone'")";

constexpr const char* DbCheckFooter =
    R"(Reads the whole file without changing it and compares everything that is stored twice. Exit status
0 when the file is whole, 1 when it has faults, 2 when it cannot be opened. A journal that a program
has left which was cut off while it wrote is read as a part of the file, and named.

Example:
  quillon db check cdj.mdb)";

constexpr const char* DbRecoverFooter =
    R"(A program that is cut off while it writes leaves a journal, FILE.journal. Until it is carried out,
other programs see the file half written. This carries it out and does nothing else; the next run would
do it, too. Exit status 0 when it is done or there is nothing to do, 2 when the journal is not complete
or not this database's, or the database is in use.

Example:
  quillon db recover cdj.mdb)";

/// The grammar and the places its values go to.
class Grammar {
  public:
    Grammar() {
        app_.set_version_flag("--version", fmt::format("quillon {}", ProgramVersion));
        app_.require_subcommand(0, 1);
        app_.footer(ProgramFooter);
        AddRunOptions(app_);
        run_->footer(RunFooter);
        AddRunOptions(*run_);
        DefineInit();
        check_->footer(CheckFooter);
        AddHostOption(*check_);
        DefineServe();
        DefineDb();
    }

    Request Parse(std::span<const char* const> arguments) {
        try {
            app_.parse(static_cast<int>(arguments.size()), arguments.data());
            RefuseRunOptionsOfOtherCommands();
            RefuseQuietScreens();
        } catch (const CLI::CallForVersion& version) {
            return TextAnswer{fmt::format("{}\n", version.what())};
        } catch (const CLI::Success&) {
            return TextAnswer{app_.help()};
        } catch (const CLI::ParseError& error) {
            return TextAnswer{fmt::format("quillon: {}\nTry '{} --help'.\n", error.what(), Name()),
                              true};
        }
        return Chosen();
    }

  private:
    void AddHostOption(CLI::App& command) {
        command
            .add_option("--host", host_,
                        "Host folder (default: $QUILLON_HOST, else the current folder)")
            ->type_name("DIR");
    }

    void AddRunOptions(CLI::App& command) {
        AddHostOption(command);
        AddChoice(command, "--view", view_, ViewNames,
                  "What the run shows: auto, window, terminal or plain (default: auto)");
        command.add_flag(
            "--quiet", quiet_,
            "Tells errors, what went away and a summary alone, in plain lines; for cron");
        command.add_flag("--allow-removals", allowRemovals_,
                         "Lets this run remove more than [Safety] in host.ini allows");
    }

    /// An option whose values are words.
    template <typename Value>
    static void AddChoice(CLI::App& command, const std::string& name, Value& value,
                          const std::map<std::string, Value>& choices,
                          const std::string& description) {
        const auto choose = [name, &value, &choices](const CLI::results_t& results) {
            const auto found = choices.find(results.front());
            if (found == choices.end()) throw CLI::ValidationError(name, Expected(choices));
            value = found->second;
            return true;
        };
        command.add_option(name, choose, description)->type_name("WORD");
    }

    template <typename Value>
    static std::string Expected(const std::map<std::string, Value>& choices) {
        std::string text = "expected one of";
        for (const auto& choice : choices)
            text += ' ' + choice.first;
        return text;
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
                  "How albums lie there: tree or flat (default: tree)");
    }

    void DefineServe() {
        serve_->footer(ServeFooter);
        AddHostOption(*serve_);
        serve_
            ->add_option(
                "--port", serveRequest_.port,
                fmt::format("Port to listen on, 0 for any (default: {})", serveRequest_.port))
            ->check(CLI::Range(0, 65535))
            ->type_name("N");
    }

    void DefineDb() {
        db_->require_subcommand(1);
        create_->footer(CreateFooter);
        AddFile(*create_, createRequest_.file, "The file to make; it must not exist");
        query_->footer(QueryFooter);
        AddFile(*query_, queryRequest_.file, "The .mdb file");
        query_->add_option("SQL", queryRequest_.sql, "A SELECT statement")
            ->required()
            ->type_name("");
        query_->add_flag("--json", queryRequest_.json, "One JSON object a line instead of a table");
        exec_->footer(ExecFooter);
        AddFile(*exec_, execRequest_.file, "The .mdb file");
        exec_->add_option("SQL", execRequest_.sql, "An INSERT, UPDATE or DELETE statement")
            ->required()
            ->type_name("");
        dbCheck_->footer(DbCheckFooter);
        AddFile(*dbCheck_, dbCheckRequest_.file, "The .mdb file");
        recover_->footer(DbRecoverFooter);
        AddFile(*recover_, recoverRequest_.file, "The .mdb file");
    }

    static void AddFile(CLI::App& command, std::filesystem::path& file, const char* description) {
        command.add_option("FILE", file, description)->required()->type_name("");
    }

    void RefuseRunOptionsOfOtherCommands() const {
        const auto chosen = app_.get_subcommands();
        if (chosen.empty() || chosen.front() == run_) return;
        for (const char* const option : {"--view", "--quiet", "--allow-removals"}) {
            if (app_.count(option) > 0) throw CLI::ExtrasError({option});
        }
    }

    void RefuseQuietScreens() const {
        if (!quiet_ || view_ == ViewKind::Auto || view_ == ViewKind::Plain) return;
        throw CLI::ValidationError("--quiet", "goes with plain lines only; leave --view out");
    }

    /// The command as it is called: "quillon db query".
    std::string Name() const {
        std::string name = "quillon";
        const CLI::App* command = &app_;
        while (!command->get_subcommands().empty()) {
            command = command->get_subcommands().front();
            name += ' ' + command->get_name();
        }
        return name;
    }

    std::filesystem::path HostFolder() const {
        if (!host_.empty()) return host_;
        const char* const named = std::getenv("QUILLON_HOST");
        return named == nullptr || *named == '\0' ? "." : named;
    }

    Request Chosen() const {
        if (init_->parsed()) return initRequest_;
        if (check_->parsed()) return CheckRequest{HostFolder()};
        if (serve_->parsed()) return ServeRequest{HostFolder(), serveRequest_.port};
        if (create_->parsed()) return createRequest_;
        if (query_->parsed()) return queryRequest_;
        if (exec_->parsed()) return execRequest_;
        if (dbCheck_->parsed()) return dbCheckRequest_;
        if (recover_->parsed()) return recoverRequest_;
        return RunRequest{HostFolder(), quiet_ ? ViewKind::Plain : view_, quiet_, allowRemovals_};
    }

    CLI::App app_{"Keeps MP3 folders, a jukebox database, tags and playlists consistent.",
                  "quillon"};
    CLI::App* run_ = app_.add_subcommand("run", "The run; also what happens without a command");
    CLI::App* init_ = app_.add_subcommand("init", "Make a host folder");
    CLI::App* check_ = app_.add_subcommand("check", "Tell what a run would do; change nothing");
    CLI::App* serve_ = app_.add_subcommand("serve", "Show the album picker in a browser");
    CLI::App* db_ = app_.add_subcommand("db", "Work on a database file from the shell");
    CLI::App* create_ = db_->add_subcommand("create", "Make a new jukebox database");
    CLI::App* query_ = db_->add_subcommand("query", "Show the rows of a SELECT");
    CLI::App* exec_ = db_->add_subcommand("exec", "Run a statement that changes rows");
    CLI::App* dbCheck_ = db_->add_subcommand("check", "Check the structure of a file");
    CLI::App* recover_ =
        db_->add_subcommand("recover", "Complete a file with the journal that was left for it");

    std::filesystem::path host_;
    ViewKind view_ = ViewKind::Auto;
    bool quiet_ = false, allowRemovals_ = false;
    InitRequest initRequest_;
    ServeRequest serveRequest_;
    DbCreateRequest createRequest_;
    DbQueryRequest queryRequest_;
    DbExecRequest execRequest_;
    DbCheckRequest dbCheckRequest_;
    DbRecoverRequest recoverRequest_;
};

}  // namespace

Request ParseCommandLine(std::span<const char* const> arguments) {
    return Grammar().Parse(arguments);
}

}  // namespace quillon
