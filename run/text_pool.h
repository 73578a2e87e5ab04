#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>

namespace quillon {

/// Texts that many rows share, each kept once and known by a number. As in the database, letter
/// case does not tell two texts apart; the spelling that came first is kept.
class TextPool {
  public:
    using Number = std::uint32_t;

    /// The text's number; the next free one, counted from 0, when it is new.
    Number Add(std::string_view text);

    /// Nothing when no such text was added.
    std::optional<Number> Find(std::string_view text) const;

    /// Valid until the pool is gone.
    std::string_view Text(Number number) const { return texts_[number]; }

    std::size_t Count() const { return texts_.size(); }

  private:
    std::deque<std::string> texts_;                    ///< never moves what it holds
    std::unordered_map<std::string, Number> numbers_;  ///< by text in lower case
    Number last_ = 0;                                  ///< the one that was added last
};

}  // namespace quillon
