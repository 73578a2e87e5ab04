#pragma once

#include <cstddef>
#include <functional>
#include <span>
#include <string>
#include <string_view>

#include "app/journal/net_changes.h"
#include "changes/change.h"

namespace quillon {

struct ChangeTextOptions {
    /// Lines of a kind; of the others only the number is told.
    std::size_t most = 100;
    /// What people call a row of which the change itself does not say it; "" where it is not known.
    /// None: the row's number has to do.
    std::function<std::string(const RowChange&)> nameOf = {};
};

/// Changes for a person to read, in groups: a heading that tells what and how many, "Albums added:
/// 3", then a line for each. It serves what has been done and what would be. No name can add a line
/// or speak to the terminal. "" for no changes.
std::string ChangeText(const NetChanges& changes, const ChangeTextOptions& options = {});

/// The rows of a table, as people call them: "Songs of the download table".
std::string ThingsOf(std::string_view inTable);

/// The log's records, errors marked with "!"; "" for none.
std::string LogText(std::span<const ChangeRecord> records, const ChangeTextOptions& options = {});

/// What is different between two texts, line by line: "- " before what goes, "+ " before what
/// comes. The bytes are those of the ANSI code page.
std::string LineDifferences(std::string_view before, std::string_view after, std::size_t most);

}  // namespace quillon
