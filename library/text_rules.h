#pragma once

#include <cstdint>
#include <string_view>

#include "platform/database.h"

namespace quillon {

/// Tells texts apart as a database does, without letter case, and fast where they are plain ASCII,
/// as nearly all are. The connection must outlive this object.
class TextRules {
  public:
    explicit TextRules(const Connection& connection) : connection_(connection) {}

    /// Texts that are equal have the same hash. `seed` is that of a text in front of this one.
    std::uint32_t Hash(std::string_view text, std::uint32_t seed = 0) const;
    bool AreEqual(std::string_view left, std::string_view right) const;
    bool EndsWith(std::string_view text, std::string_view ending) const;
    /// In the order in which the database sorts.
    bool ComesBefore(std::string_view left, std::string_view right) const {
        return connection_.CompareTexts(left, right) < 0;
    }

  private:
    const Connection& connection_;
};

}  // namespace quillon
