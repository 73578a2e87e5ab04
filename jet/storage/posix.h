#pragma once

#include <cerrno>
#include <filesystem>
#include <string_view>
#include <utility>

namespace jet::storage {

/// A file descriptor that is closed when it goes.
class Descriptor {
  public:
    explicit Descriptor(int number) : number_(number) {}
    Descriptor(Descriptor&& other) noexcept : number_(other.number_) { other.number_ = -1; }
    Descriptor& operator=(Descriptor&& other) noexcept {
        std::swap(number_, other.number_);
        return *this;
    }
    ~Descriptor();

    int Number() const { return number_; }
    bool IsOpen() const { return number_ >= 0; }

  private:
    int number_;
};

/// Repeats a system call that a signal interrupted.
template <typename Call>
auto Uninterrupted(Call call) {
    auto result = call();
    while (result == -1 && errno == EINTR)
        result = call();
    return result;
}

/// Throws the jet::Error for a failed system call: "Cannot <verb> <path>: <reason>.".
[[noreturn]] void ThrowSystemError(std::string_view verb, const std::filesystem::path& path,
                                   int errorNumber);

}  // namespace jet::storage
