#pragma once

#include <string>
#include <string_view>

#include "platform/portable/temporary_entry.h"

namespace quillon {

/// A folder that appears under its name whole or not at all: it is filled under a temporary name
/// beside it and renamed in Commit(). Destroyed without Commit() it leaves nothing behind.
class SafeFolder {
  public:
    /// `target` is the local path, `shownPath` the Windows path for failures.
    SafeFolder(std::string target, std::string_view shownPath);
    SafeFolder(const SafeFolder&) = delete;
    SafeFolder& operator=(const SafeFolder&) = delete;
    ~SafeFolder();

    /// The local path of the folder that is being filled.
    const std::string& Draft() const { return draft_.path; }

    /// Failure: FileAlreadyExists when something has the name by now.
    void Commit();

  private:
    std::string target_;
    TemporaryEntry draft_;
    bool committed_ = false;
};

}  // namespace quillon
