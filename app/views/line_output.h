#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "app/views/output_channel.h"

namespace quillon {

/// Lines on a file descriptor, each written at once. A reader that disappears or does not keep
/// up never ends a run or holds it back: what cannot be written now waits in a bounded buffer.
/// What does not fit there is left out, and a line says so as soon as there is room again.
class LineOutput {
  public:
    /// The descriptor stays the caller's.
    explicit LineOutput(int descriptor) : channel_(descriptor) {}

    void WriteLine(std::string_view line);

    /// Gives a slow reader up to a second for each piece of what still waits.
    void Finish();

  private:
    void TellWhatIsMissing();
    void WritePending();

    OutputChannel channel_;
    std::string pending_;
    std::size_t missing_ = 0;  ///< lines left out since the last one that was not
};

}  // namespace quillon
