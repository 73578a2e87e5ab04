#pragma once

#include <chrono>
#include <string_view>

namespace quillon {

/// A file descriptor that is written to without ever waiting for its reader, be it a full pipe, a
/// stopped terminal or a socket. The descriptor itself and what others see of it (a shell shares
/// its standard output with its children) stay as they are.
class OutputChannel {
  public:
    /// The descriptor stays the caller's.
    explicit OutputChannel(int descriptor);
    ~OutputChannel();
    OutputChannel(const OutputChannel&) = delete;
    OutputChannel& operator=(const OutputChannel&) = delete;

    /// Writes what can be written now; how many bytes that was.
    std::size_t Write(std::string_view text);

    /// Whether there was room within this time.
    bool WaitForRoom(std::chrono::milliseconds most) const;

    /// The reader is gone for good; nothing is written any more.
    bool Broken() const { return broken_; }

  private:
    enum class Kind { AsItIs, NeverBlocks, Socket, MayBlock };

    long WriteOnce(std::string_view text) const;

    int descriptor_;
    Kind kind_ = Kind::AsItIs;
    bool owned_ = false;
    bool broken_ = false;
};

}  // namespace quillon
