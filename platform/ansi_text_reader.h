#pragma once

#include <memory>
#include <string>

#include "platform/files.h"

namespace quillon {

/// Reads ANSI lines from whatever holds the bytes; only a little of it is in memory at a time.
class AnsiTextReader : public TextReader {
  public:
    /// `shownPath` is for failures.
    AnsiTextReader(std::unique_ptr<BinaryReader> bytes, std::string shownPath);

    bool AtEndOfStream() const override { return next_ == buffer_.size(); }
    std::string ReadLine() override;

  private:
    void Fill();

    std::unique_ptr<BinaryReader> bytes_;
    std::string shownPath_;
    std::string buffer_;
    std::size_t next_ = 0;  ///< never at the buffer's end before the file's
};

}  // namespace quillon
