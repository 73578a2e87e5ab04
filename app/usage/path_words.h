#pragma once

#include <CLI/CLI.hpp>

namespace quillon {

/// A word that begins with a slash is a path on every system, never an option as Windows' own
/// commands have them.
inline void TakeSlashesAsPaths(CLI::App& app) {
    app.allow_windows_style_options(false);
    for (CLI::App* const command : app.get_subcommands([](const CLI::App*) { return true; }))
        TakeSlashesAsPaths(*command);
}

}  // namespace quillon
