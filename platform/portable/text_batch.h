#pragma once

#include <deque>
#include <functional>
#include <string>
#include <string_view>

#include "platform/files.h"
#include "platform/portable/folder_index.h"
#include "platform/portable/safe_file.h"
#include "platform/windows_path.h"

namespace quillon {

/// Writes files under temporary names. When so many wait that the process must not hold more open,
/// or at the end, their file system is flushed once and they take their names.
class PortableTextBatch : public TextBatch {
  public:
    /// `localOf` finds a file's local path and makes its folder ready, `closing` is called before
    /// files take their names; the index, which must outlive this object, is told of them.
    PortableTextBatch(std::function<std::string(const WindowsPath&)> localOf,
                      std::function<void()> closing, FolderIndex& index, Done done);

    void Write(std::string_view path, std::string_view bytes) override;
    void Close() override;

  private:
    struct Waiting {
        Waiting(const std::string& path, const WindowsPath& shown, unsigned number)
            : local(path),
              file(path, shown.Text(), SafeFile::Existing::Replace, NewFileRights, number) {}

        std::string local;
        SafeFile file;
    };

    std::function<std::string(const WindowsPath&)> localOf_;
    std::function<void()> closing_;
    FolderIndex& index_;
    Done done_;
    std::deque<Waiting> waiting_;
};

}  // namespace quillon
