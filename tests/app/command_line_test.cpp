#include "app/command_line.h"

#include <algorithm>
#include <cstdlib>
#include <gtest/gtest.h>
#include <iterator>
#include <optional>
#include <sstream>
#include <string>
#include <vector>

namespace quillon {
namespace {

Request Parse(std::vector<const char*> arguments) {
    arguments.insert(arguments.begin(), "quillon");
    return ParseCommandLine(arguments);
}

/// Sets QUILLON_HOST for as long as it lives.
class HostVariable {
  public:
    explicit HostVariable(const char* value) {
        if (const char* const before = std::getenv("QUILLON_HOST")) before_ = before;
        if (value == nullptr) {
            unsetenv("QUILLON_HOST");
        } else {
            setenv("QUILLON_HOST", value, 1);
        }
    }
    ~HostVariable() {
        if (before_) {
            setenv("QUILLON_HOST", before_->c_str(), 1);
        } else {
            unsetenv("QUILLON_HOST");
        }
    }
    HostVariable(const HostVariable&) = delete;
    HostVariable& operator=(const HostVariable&) = delete;

  private:
    std::optional<std::string> before_;
};

std::string UsageError(const std::vector<const char*>& arguments) {
    const Request request = Parse(arguments);
    const auto* const answer = std::get_if<TextAnswer>(&request);
    if (answer == nullptr || !answer->usageError) return "(no usage error)";
    return answer->text;
}

std::string Help(const std::vector<const char*>& arguments) {
    const Request request = Parse(arguments);
    const auto* const answer = std::get_if<TextAnswer>(&request);
    if (answer == nullptr || answer->usageError) return "(no help)";
    return answer->text;
}

TEST(CommandLine, RunsWithoutACommand) {
    const HostVariable none(nullptr);
    const auto request = std::get<RunRequest>(Parse({}));
    EXPECT_EQ(request.host, ".");
    EXPECT_EQ(request.view, ViewKind::Auto);
}

TEST(CommandLine, TakesTheHostFolderFromOptionThenVariableThenCurrentFolder) {
    const HostVariable variable("/from/variable");
    EXPECT_EQ(std::get<RunRequest>(Parse({"run", "--host", "/a"})).host, "/a");
    EXPECT_EQ(std::get<RunRequest>(Parse({"--host", "/a"})).host, "/a");
    EXPECT_EQ(std::get<RunRequest>(Parse({"--host", "/a", "run"})).host, "/a");
    EXPECT_EQ(std::get<CheckRequest>(Parse({"check", "--host=/a"})).host, "/a");
    EXPECT_EQ(std::get<RunRequest>(Parse({"run"})).host, "/from/variable");
    EXPECT_EQ(std::get<CheckRequest>(Parse({"check"})).host, "/from/variable");

    const HostVariable empty("");
    EXPECT_EQ(std::get<RunRequest>(Parse({})).host, ".");
}

TEST(CommandLine, KnowsFourViews) {
    EXPECT_EQ(std::get<RunRequest>(Parse({"--view", "auto"})).view, ViewKind::Auto);
    EXPECT_EQ(std::get<RunRequest>(Parse({"--view", "plain"})).view, ViewKind::Plain);
    EXPECT_EQ(std::get<RunRequest>(Parse({"run", "--view", "terminal"})).view, ViewKind::Terminal);
    EXPECT_EQ(std::get<RunRequest>(Parse({"run", "--view", "window"})).view, ViewKind::Window);
    const std::string error = UsageError({"run", "--view", "loud"});
    EXPECT_EQ(error,
              "quillon: --view: expected one of auto plain terminal window\n"
              "Try 'quillon run --help'.\n");
}

TEST(CommandLine, QuietMeansPlainLines) {
    EXPECT_FALSE(std::get<RunRequest>(Parse({"run"})).quiet);
    for (const std::vector<const char*>& arguments :
         std::vector<std::vector<const char*>>{{"--quiet"},
                                               {"run", "--quiet"},
                                               {"run", "--quiet", "--view", "plain"},
                                               {"run", "--view", "auto", "--quiet"}}) {
        const auto request = std::get<RunRequest>(Parse(arguments));
        EXPECT_TRUE(request.quiet);
        EXPECT_EQ(request.view, ViewKind::Plain);
    }
}

TEST(CommandLine, QuietGoesWithNoScreen) {
    for (const char* const view : {"window", "terminal"}) {
        EXPECT_EQ(UsageError({"run", "--quiet", "--view", view}),
                  "quillon: --quiet: goes with plain lines only; leave --view out\n"
                  "Try 'quillon run --help'.\n");
    }
}

TEST(CommandLine, RemovalsAreAllowedOnlyWhereThatIsSaid) {
    EXPECT_FALSE(std::get<RunRequest>(Parse({"run"})).allowRemovals);
    EXPECT_FALSE(std::get<RunRequest>(Parse({})).allowRemovals);
    EXPECT_TRUE(std::get<RunRequest>(Parse({"run", "--allow-removals"})).allowRemovals);
    EXPECT_TRUE(std::get<RunRequest>(Parse({"--allow-removals"})).allowRemovals);
    const auto quiet = std::get<RunRequest>(Parse({"run", "--quiet", "--allow-removals"}));
    EXPECT_TRUE(quiet.quiet && quiet.allowRemovals);
    EXPECT_NE(UsageError({"check", "--allow-removals"}).find("--allow-removals"),
              std::string::npos);
    EXPECT_NE(UsageError({"--allow-removals", "check"}).find("--allow-removals"),
              std::string::npos);
}

TEST(CommandLine, InitTakesAFolderAndTheMusic) {
    const auto request = std::get<InitRequest>(Parse({"init", "shelf", "--music", "/m"}));
    EXPECT_EQ(request.host, "shelf");
    EXPECT_EQ(request.music, "/m");
    EXPECT_FALSE(request.database.has_value());
    EXPECT_EQ(request.layout, LibraryLayout::Tree);

    const auto full = std::get<InitRequest>(
        Parse({"init", "--layout", "flat", "--database", "x.mdb", "--music", "m", "shelf"}));
    EXPECT_EQ(full.database, "x.mdb");
    EXPECT_EQ(full.layout, LibraryLayout::Flat);
}

TEST(CommandLine, ServeTakesAPort) {
    const auto usual = std::get<ServeRequest>(Parse({"serve", "--host", "/a"}));
    EXPECT_EQ(usual.host, "/a");
    EXPECT_EQ(usual.port, 8777);
    EXPECT_EQ(std::get<ServeRequest>(Parse({"serve", "--port", "0"})).port, 0);
    EXPECT_EQ(std::get<ServeRequest>(Parse({"serve", "--port", "65535"})).port, 65535);
    for (const char* const port : {"65536", "-1", "x", "80x", ""})
        EXPECT_NE(UsageError({"serve", "--port", port}).find("--port"), std::string::npos) << port;
}

TEST(CommandLine, DbKnowsFourActions) {
    EXPECT_EQ(std::get<DbCreateRequest>(Parse({"db", "create", "a.mdb"})).file, "a.mdb");
    const auto query = std::get<DbQueryRequest>(Parse({"db", "query", "a.mdb", "SELECT 1"}));
    EXPECT_EQ(query.file, "a.mdb");
    EXPECT_EQ(query.sql, "SELECT 1");
    EXPECT_EQ(query.format, RowFormat::Table);
    EXPECT_EQ(std::get<DbQueryRequest>(Parse({"db", "query", "--json", "a.mdb", "SELECT"})).format,
              RowFormat::Json);
    const auto piped = std::get<DbQueryRequest>(
        Parse({"db", "query", "a.mdb", "--csv", "--param", "a=1", "--param", "b"}));
    EXPECT_EQ(piped.format, RowFormat::Csv);
    EXPECT_EQ(piped.sql, std::nullopt);
    EXPECT_EQ(piped.parameters, (std::vector<std::string>{"a=1", "b"}));
    EXPECT_TRUE(std::get<DbCreateRequest>(Parse({"db", "create", "--empty", "a.mdb"})).empty);
    EXPECT_EQ(std::get<DbSchemaRequest>(Parse({"db", "schema", "a.mdb"})).table, "");
    EXPECT_EQ(std::get<DbSchemaRequest>(Parse({"db", "schema", "a.mdb", "T"})).table, "T");
    const auto imported = std::get<DbImportRequest>(
        Parse({"db", "import", "a.mdb", "T", "x.csv", "--separator", ";", "--no-header"}));
    EXPECT_EQ(imported.data, "x.csv");
    EXPECT_EQ(imported.separator, ";");
    EXPECT_FALSE(imported.hasHeader);
    EXPECT_EQ(std::get<DbExportRequest>(Parse({"db", "export", "a.mdb", "T"})).format,
              RowFormat::Csv);
    EXPECT_EQ(std::get<DbTablesRequest>(Parse({"db", "tables", "a.mdb"})).file, "a.mdb");
    EXPECT_EQ(std::get<DbCompactRequest>(Parse({"db", "compact", "a.mdb"})).file, "a.mdb");
    EXPECT_EQ(std::get<DbQueryRequest>(Parse({"db", "query", "a.mdb", "SELECT", "--json"})).format,
              RowFormat::Json);
    const auto exec = std::get<DbExecRequest>(Parse({"db", "exec", "a.mdb", "DELETE * FROM T"}));
    EXPECT_EQ(exec.sql, "DELETE * FROM T");
    EXPECT_EQ(std::get<DbCheckRequest>(Parse({"db", "check", "a.mdb"})).file, "a.mdb");
    EXPECT_EQ(std::get<DbRecoverRequest>(Parse({"db", "recover", "a.mdb"})).file, "a.mdb");
}

TEST(CommandLine, AStatementMayHoldAnything) {
    const char* const sql = "SELECT \"a\" + 'b'; -- [x], {1,2} %s\n=";
    EXPECT_EQ(std::get<DbQueryRequest>(Parse({"db", "query", "a.mdb", sql})).sql, sql);
}

TEST(CommandLine, AUsageErrorNamesWhatIsWrongAndHowToLearnMore) {
    EXPECT_EQ(UsageError({"init", "shelf"}),
              "quillon: --music is required\nTry 'quillon init --help'.\n");
    EXPECT_EQ(UsageError({"init", "--music", "m"}),
              "quillon: DIR is required\nTry 'quillon init --help'.\n");
    EXPECT_EQ(UsageError({"db", "import", "a.mdb", "T"}),
              "quillon: DATA is required\nTry 'quillon db import --help'.\n");
    EXPECT_NE(UsageError({"db"}).find("Try 'quillon db --help'."), std::string::npos);
    EXPECT_NE(UsageError({"frobnicate"}).find("frobnicate"), std::string::npos);
    EXPECT_NE(UsageError({"run", "--dry"}).find("--dry"), std::string::npos);
    EXPECT_NE(UsageError({"run", "check"}).find("check"), std::string::npos);
    EXPECT_NE(UsageError({"run", "--host"}).find("--host"), std::string::npos);
}

TEST(CommandLine, ViewsAndQuietnessBelongToRunsAlone) {
    EXPECT_NE(UsageError({"--quiet", "check"}).find("--quiet"), std::string::npos);
    EXPECT_NE(UsageError({"check", "--quiet"}).find("--quiet"), std::string::npos);
    EXPECT_NE(UsageError({"--view", "plain", "check"}).find("--view"), std::string::npos);
    EXPECT_NE(UsageError({"check", "--view", "plain"}).find("--view"), std::string::npos);
}

/// The command and all below it.
std::vector<CommandDescription> AllOf(const CommandDescription& command) {
    std::vector<CommandDescription> all{command};
    for (const CommandDescription& below : command.commands)
        for (const CommandDescription& one : AllOf(below))
            all.push_back(one);
    return all;
}

std::vector<std::string> WordsOf(const std::string& name) {
    std::istringstream words(name);
    return {std::istream_iterator<std::string>(words), {}};
}

/// What the program answers to the words of a command's name and one more.
std::string HelpOf(const CommandDescription& command, const char* more, bool first = false) {
    const std::vector<std::string> words = WordsOf(command.name);
    std::vector<const char*> arguments;
    for (std::size_t i = 1; i < words.size(); ++i)
        arguments.push_back(words[i].c_str());
    arguments.insert(first ? arguments.begin() : arguments.end(), more);
    return Help(arguments);
}

TEST(CommandLine, EveryCommandHasHelpWithAnExample) {
    const std::vector<CommandDescription> all = AllOf(DescribeCommandLine());
    ASSERT_GE(all.size(), 12U);
    for (const CommandDescription& command : all) {
        const std::string help = HelpOf(command, "--help");
        EXPECT_NE(help.find("\n  " + command.name + ' '), std::string::npos) << help;
        EXPECT_NE(help.find("Usage: " + command.name + ' '), std::string::npos) << help;
    }
    EXPECT_NE(Help({"db", "--help"}).find("query"), std::string::npos);
}

TEST(CommandLine, HelpFitsInEightyColumnsButForExamplesToCopy) {
    for (const CommandDescription& command : AllOf(DescribeCommandLine())) {
        std::istringstream help(HelpOf(command, "--help"));
        for (std::string line; std::getline(help, line);) {
            const bool isExample = line.starts_with("  quillon ");
            EXPECT_TRUE(isExample || line.size() <= 80) << line;
        }
    }
}

TEST(CommandLine, HelpBeforeACommandIsHelpBehindIt) {
    for (const CommandDescription& command : AllOf(DescribeCommandLine()))
        EXPECT_EQ(HelpOf(command, "help", true), HelpOf(command, "--help")) << command.name;
    EXPECT_NE(Help({"help", "run"}).find("Usage: quillon run"), std::string::npos);
    EXPECT_EQ(UsageError({"help", "rum"}),
              "quillon: there is no command 'rum'; did you mean 'run'?\nTry 'quillon --help'.\n");
    EXPECT_EQ(UsageError({"help", "db", "qury"}),
              "quillon: 'quillon db' has no command 'qury'; did you mean 'query'?\n"
              "Try 'quillon db --help'.\n");
    EXPECT_EQ(UsageError({"rum", "--help"}), UsageError({"help", "rum"}));
}

TEST(CommandLine, SuggestsTheNearestCommand) {
    const auto meant = [](const char* word) {
        const std::string error = UsageError({word});
        const std::size_t start = error.find("did you mean '");
        return start == std::string::npos ? error : error.substr(start, error.find('?') - start);
    };
    EXPECT_EQ(meant("rum"), "did you mean 'run'");
    EXPECT_EQ(meant("chekc"), "did you mean 'check'");
    EXPECT_EQ(meant("Init"), "did you mean 'init'");
    EXPECT_EQ(meant("ser"), "did you mean 'serve'");
    EXPECT_EQ(meant("frobnicate"),
              "quillon: there is no command 'frobnicate'; the commands are run, preview, init, "
              "check, changes, undo, serve, backups, restore, db and help. A host folder is named "
              "with --host frobnicate\n"
              "Try 'quillon --help'.\n");
    EXPECT_EQ(UsageError({"db"}).find("quillon: 'quillon db' needs a command: "), 0U);
}

TEST(CommandLine, SuggestsTheNearestOption) {
    EXPECT_EQ(UsageError({"run", "--quite"}),
              "quillon: 'quillon run' has no option --quite; did you mean '--quiet'?\n"
              "Try 'quillon run --help'.\n");
    EXPECT_EQ(UsageError({"--hots", "x"}),
              "quillon: 'quillon' has no option --hots; did you mean '--host'?\n"
              "Try 'quillon --help'.\n");
    EXPECT_EQ(UsageError({"init", "shelf", "--musci=x"}),
              "quillon: 'quillon init' has no option --musci; did you mean '--music'?\n"
              "Try 'quillon init --help'.\n");
    EXPECT_EQ(UsageError({"run", "--allow"}),
              "quillon: 'quillon run' has no option --allow; did you mean '--allow-removals'?\n"
              "Try 'quillon run --help'.\n");
    EXPECT_EQ(UsageError({"run", "-x"}),
              "quillon: 'quillon run' has no option -x\nTry 'quillon run --help'.\n");
    EXPECT_EQ(UsageError({"check", "--quiet"}),
              "quillon: 'quillon check' has no option --quiet; 'quillon run' has\n"
              "Try 'quillon check --help'.\n");
    EXPECT_EQ(UsageError({"run", "--view", "terminl"}),
              "quillon: --view: expected one of auto plain terminal window; did you mean "
              "terminal?\nTry 'quillon run --help'.\n");
}

TEST(CommandLine, AFolderWithoutHostIsToldHowToBeNamed) {
    EXPECT_EQ(UsageError({"run", "shelf"}),
              "quillon: 'quillon run' takes no argument 'shelf'; name the host folder with "
              "--host: quillon run --host shelf\nTry 'quillon run --help'.\n");
    EXPECT_NE(UsageError({"check", "shelf"}).find("quillon check --host shelf"), std::string::npos);
    EXPECT_NE(UsageError({"~/shelf"}).find("--host ~/shelf"), std::string::npos);
}

TEST(CommandLine, TellsWhatIsWrongWithArgumentsAndValues) {
    EXPECT_EQ(UsageError({"run", "check"}),
              "quillon: 'quillon run' and 'quillon check' are two commands; give one at a time\n"
              "Try 'quillon run --help'.\n");
    EXPECT_EQ(UsageError({"db", "query", "a.mdb", "SELECT", "*"}),
              "quillon: '*' is one argument too many for 'quillon db query'; an argument with "
              "blanks needs quotes\nTry 'quillon db query --help'.\n");
    EXPECT_EQ(UsageError({"run", "--host"}),
              "quillon: --host needs a value: --host DIR\nTry 'quillon run --help'.\n");
    EXPECT_EQ(UsageError({"run", "--host", "a", "--host", "b"}),
              "quillon: --host may be given only once\nTry 'quillon run --help'.\n");
    EXPECT_EQ(UsageError({"serve", "--port", "70000"}),
              "quillon: --port: expected a number from 0 to 65535\n"
              "Try 'quillon serve --help'.\n");
}

TEST(CommandLine, DescribesItselfAsData) {
    const CommandDescription program = DescribeCommandLine();
    const CommandDescription* const init = FindCommand(program, "quillon init");
    ASSERT_NE(init, nullptr);
    EXPECT_EQ(init->Word(), "init");
    EXPECT_EQ(UsageLine(*init), "quillon init [OPTIONS] --music FOLDER DIR");
    const auto layout = std::ranges::find_if(init->options, [](const OptionDescription& option) {
        return option.names.back() == "--layout";
    });
    ASSERT_NE(layout, init->options.end());
    EXPECT_EQ(layout->choices, (std::vector<std::string>{"flat", "tree"}));
    ASSERT_EQ(init->examples.size(), 2U);
    EXPECT_EQ(init->examples[0].line, "quillon init ~/shelf --music ~/Music");
    const CommandDescription* const run = FindCommand(program, "quillon run");
    ASSERT_NE(run, nullptr);
    EXPECT_EQ(run->examples.back().remark, "after you have deleted half of the music");
    EXPECT_EQ(FindCommand(program, "quillon rum"), nullptr);
}

TEST(CommandLine, TellsItsVersion) {
    EXPECT_TRUE(Help({"--version"}).starts_with("quillon "));
}

}  // namespace
}  // namespace quillon
