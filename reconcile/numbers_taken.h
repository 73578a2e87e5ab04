#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

namespace quillon {

/// The numbers 1 to N and which of them are taken.
class NumbersTaken {
  public:
    explicit NumbersTaken(std::int16_t count) : taken_(static_cast<std::size_t>(count) + 1) {}

    std::int64_t Count() const { return static_cast<std::int64_t>(taken_.size()) - 1; }
    bool IsTaken(std::int64_t number) const { return taken_[static_cast<std::size_t>(number)]; }
    void Take(std::int64_t number) { taken_[static_cast<std::size_t>(number)] = true; }

    /// The lowest free number, which is then taken; nothing when there is none.
    std::optional<std::int64_t> TakeLowest() {
        while (lowest_ <= Count() && IsTaken(lowest_))
            ++lowest_;
        if (lowest_ > Count()) return std::nullopt;
        Take(lowest_);
        return lowest_;
    }

  private:
    std::vector<bool> taken_;
    std::int64_t lowest_ = 1;
};

}  // namespace quillon
