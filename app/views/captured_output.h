#pragma once

#include <cstdio>
#include <memory>
#include <string>

namespace quillon {

/// A stream for a library that writes to a file descriptor, which keeps in memory what was written.
class CapturedOutput {
  public:
    /// Failing to make one leaves Stream() empty.
    CapturedOutput();

    std::FILE* Stream() const { return stream_.get(); }

    /// What was written since the last call.
    std::string Take();

  private:
    std::unique_ptr<std::FILE, int (*)(std::FILE*)> stream_{nullptr, std::fclose};
};

}  // namespace quillon
