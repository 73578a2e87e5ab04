#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "platform/files.h"
#include "platform/portable/file_handle.h"
#include "platform/portable/safe_file.h"

namespace quillon {

/// Writes ANSI text to a SafeFile.
class AnsiTextWriter : public TextWriter {
  public:
    /// `closing` is called before the file gets its name, `closed` when it has it.
    AnsiTextWriter(const std::string& target, std::string_view shownPath,
                   SafeFile::Existing existing, std::function<void()> closing,
                   std::function<void()> closed);

    void Write(std::string_view text) override;
    void WriteLine(std::string_view line) override;
    void WriteBytes(std::string_view bytes) override;
    void SetModified(DateTime local) override { modified_ = local; }
    void Close() override;
    bool CloseIf(const std::function<bool()>& isWanted) override;

  private:
    std::string shownPath_;
    SafeFile file_;
    std::function<void()> closing_, closed_;
    std::string buffer_;
    std::optional<DateTime> modified_;
    bool open_ = true;
};

/// Reads bytes without a file position in the operating system.
class PositionedReader : public BinaryReader {
  public:
    PositionedReader(FileHandle file, std::uint64_t size) : file_(std::move(file)), size_(size) {}

    std::uint64_t Size() const override { return size_; }
    void SetPosition(std::uint64_t position) override { position_ = position; }
    std::size_t ReadInto(std::span<std::uint8_t> bytes) override;

  private:
    void ReadAhead(std::size_t count);

    FileHandle file_;
    std::uint64_t size_;
    std::uint64_t position_ = 0;
    // Tags are read field by field, and a call of the system for each would take longer than all
    // else.
    std::vector<std::uint8_t> ahead_;
    std::uint64_t aheadFrom_ = 0;
};

}  // namespace quillon
