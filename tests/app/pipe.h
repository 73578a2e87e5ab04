#pragma once

#include <array>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <string>
#include <unistd.h>

namespace quillon {

/// A pipe whose reading end the test keeps.
class Pipe {
  public:
    Pipe() { EXPECT_EQ(pipe2(ends_.data(), O_CLOEXEC), 0); }
    ~Pipe() {
        CloseReader();
        CloseWriter();
    }
    Pipe(const Pipe&) = delete;
    Pipe& operator=(const Pipe&) = delete;

    int Writer() const { return ends_[1]; }
    void CloseReader() { Close(ends_[0]); }
    void CloseWriter() { Close(ends_[1]); }

    /// What lies in the pipe now.
    std::string Waiting() const {
        EXPECT_EQ(fcntl(ends_[0], F_SETFL, O_NONBLOCK), 0);
        std::string text;
        std::array<char, 65536> buffer{};
        for (;;) {
            const ssize_t count = read(ends_[0], buffer.data(), buffer.size());
            if (count <= 0) return text;
            text.append(buffer.data(), static_cast<std::size_t>(count));
        }
    }

  private:
    static void Close(int& end) {
        if (end >= 0) close(end);
        end = -1;
    }
    std::array<int, 2> ends_{-1, -1};
};

}  // namespace quillon
