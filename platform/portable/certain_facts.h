#pragma once

#include <optional>
#include <string>

#include "platform/portable/local_file.h"

/// What is asked of local paths before anything is changed there.
namespace quillon {

/// What the system knows of a local path, links followed; nothing where certainly nothing has it.
/// Failure where that cannot be told; `shown` is the path in its text.
std::optional<FileFacts> CertainFacts(const std::string& local, const std::string& shown);

/// Whether a folder is another one or lies in it. Folders are told apart by what they are: one that
/// is mounted at a second place has two paths.
bool IsInside(const std::string& inner, const std::string& outer);

/// Whether it is a link to something that is not there. Nobody can tell what else cannot be looked
/// at might be.
bool LeadsNowhere(const std::string& local);

/// Whether a file somewhere below the folder is write-protected, or a folder cannot be emptied.
/// Symbolic links are not followed.
bool HoldsProtectedFile(const std::string& folder);

}  // namespace quillon
