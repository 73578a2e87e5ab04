#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/files.h"
#include "platform/windows_path.h"

namespace quillon {

/// A text that is written into memory and handed over when it is closed.
class PreviewText : public TextWriter {
  public:
    /// With the time that the file is to have, if it is not the present one.
    using Written = std::function<void(std::string bytes, std::optional<DateTime> modified)>;

    PreviewText(std::string shownPath, Written written)
        : shownPath_(std::move(shownPath)), written_(std::move(written)) {}

    void Write(std::string_view text) override;
    void WriteLine(std::string_view line) override;
    void WriteBytes(std::string_view bytes) override;
    void SetModified(DateTime local) override { modified_ = local; }
    void Close() override {
        CloseIf([] { return true; });
    }
    bool CloseIf(const std::function<bool()>& isWanted) override;

  private:
    std::string shownPath_;
    Written written_;
    std::string bytes_;
    std::optional<DateTime> modified_;
    bool open_ = true;
};

/// Texts that are handed over together.
class PreviewBatch : public TextBatch {
  public:
    using Check = std::function<void(const WindowsPath& path)>;
    using Written = std::function<void(const WindowsPath& path, std::string bytes)>;

    /// `check` throws Failure for a file that could not be written.
    PreviewBatch(Check check, Written written, Done done)
        : check_(std::move(check)), written_(std::move(written)), done_(std::move(done)) {}

    void Write(std::string_view path, std::string_view bytes) override;
    void Close() override;

  private:
    Check check_;
    Written written_;
    Done done_;
    std::vector<std::pair<WindowsPath, std::string>> waiting_;
};

}  // namespace quillon
