#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <variant>

namespace quillon {

/// Which user interface a run shows.
enum class ViewKind { Auto, Window, Terminal, Plain };

/// How albums lie in the music folder: folders of folders, or files side by side.
enum class LibraryLayout { Tree, Flat };

/// `quillon run`
struct RunRequest {
    std::filesystem::path host;
    ViewKind view = ViewKind::Auto;
    bool quiet = false;          ///< plain lines that tell errors, losses and the summary alone
    bool allowRemovals = false;  ///< the brake on loss is off for this run
};

/// `quillon init`
struct InitRequest {
    std::filesystem::path host;
    std::filesystem::path music;
    std::optional<std::filesystem::path> database;  ///< an existing one; none: a new one is made
    LibraryLayout layout = LibraryLayout::Tree;
};

/// `quillon check`
struct CheckRequest {
    std::filesystem::path host;
};

/// `quillon serve`
struct ServeRequest {
    std::filesystem::path host;
    int port = 8777;  ///< 0: any that is free
};

/// `quillon db create`
struct DbCreateRequest {
    std::filesystem::path file;
};

/// `quillon db query`
struct DbQueryRequest {
    std::filesystem::path file;
    std::string sql;
    bool json = false;  ///< one object a line instead of a table
};

/// `quillon db exec`
struct DbExecRequest {
    std::filesystem::path file;
    std::string sql;
};

/// `quillon db check`
struct DbCheckRequest {
    std::filesystem::path file;
};

/// `quillon db recover`
struct DbRecoverRequest {
    std::filesystem::path file;
};

/// A command line that is answered by text alone: help, version or a usage error.
struct TextAnswer {
    std::string text;
    bool usageError = false;  ///< belongs on the error stream, exit status 2
};

/// Everything that a command line can ask for.
using Request =
    std::variant<TextAnswer, RunRequest, InitRequest, CheckRequest, ServeRequest, DbCreateRequest,
                 DbQueryRequest, DbExecRequest, DbCheckRequest, DbRecoverRequest>;

}  // namespace quillon
