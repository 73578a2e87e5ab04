#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace quillon {

/// Lines on a file descriptor, each written at once. A reader that goes away or that does not keep
/// up never ends a run or holds it back: what cannot be written now waits in a bounded buffer, what
/// does not fit there is dropped.
class LineOutput {
  public:
    explicit LineOutput(int descriptor) : descriptor_(descriptor) {}

    void WriteLine(std::string_view line);

    /// Gives a slow reader up to a second for what still waits.
    void Finish();

  private:
    void WritePending();

    int descriptor_;
    std::string pending_;
    bool broken_ = false;
};

}  // namespace quillon
