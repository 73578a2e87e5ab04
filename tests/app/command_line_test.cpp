#include "app/command_line.h"

#include <cstdlib>
#include <gtest/gtest.h>
#include <optional>
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
    EXPECT_FALSE(query.json);
    EXPECT_TRUE(std::get<DbQueryRequest>(Parse({"db", "query", "--json", "a.mdb", "SELECT"})).json);
    EXPECT_TRUE(std::get<DbQueryRequest>(Parse({"db", "query", "a.mdb", "SELECT", "--json"})).json);
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
    EXPECT_EQ(UsageError({"db", "query", "a.mdb"}),
              "quillon: SQL is required\nTry 'quillon db query --help'.\n");
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

TEST(CommandLine, EveryCommandHasHelpWithAnExample) {
    const std::vector<std::vector<const char*>> commands{{},
                                                         {"run"},
                                                         {"init"},
                                                         {"check"},
                                                         {"serve"},
                                                         {"db", "create"},
                                                         {"db", "query"},
                                                         {"db", "exec"},
                                                         {"db", "check"}};
    for (std::vector<const char*> command : commands) {
        std::string example = "\n  quillon";
        for (const char* const word : command)
            example += std::string(" ") + word;
        command.push_back("--help");
        EXPECT_NE(Help(command).find(example), std::string::npos) << Help(command);
    }
    EXPECT_NE(Help({"db", "--help"}).find("query"), std::string::npos);
}

TEST(CommandLine, TellsItsVersion) {
    EXPECT_TRUE(Help({"--version"}).starts_with("quillon "));
}

}  // namespace
}  // namespace quillon
