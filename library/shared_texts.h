#pragma once

#include <array>
#include <cstddef>
#include <deque>
#include <string>
#include <string_view>

#include "library/row_index.h"
#include "library/row_text.h"

namespace quillon {

/// A text that many rows have, kept once: an album's identifier, an artist's name. Reads like a
/// RowText; valid as long as the SharedTexts that it comes from.
class SharedText {
  public:
    SharedText() = default;

    bool IsNull() const { return Kept().IsNull(); }
    bool IsEmpty() const { return Kept().IsEmpty(); }
    const std::string& Text() const { return Kept().Text(); }
    /// Whether both are one spelling of the same SharedTexts; a look at no letter.
    bool IsSameAs(const SharedText& other) const { return kept_ == other.kept_; }
    operator const std::string&() const { return Text(); }  // NOLINT: reads as a text
    operator std::string_view() const { return Text(); }    // NOLINT: likewise
    friend bool operator==(const SharedText& row, std::string_view text) {
        return row.Text() == text;
    }

  private:
    friend class SharedTexts;
    explicit SharedText(const RowText& kept) : kept_(&kept) {}

    const RowText& Kept() const {
        static const RowText null;
        return kept_ == nullptr ? null : *kept_;
    }

    const RowText* kept_ = nullptr;
};

/// Keeps such texts, each spelling once.
class SharedTexts {
  public:
    SharedText Keep(const Value& value);

  private:
    std::deque<RowText> texts_;  ///< never moves what it holds
    RowIndex bySpelling_;
    /// The last ones: rows of one album mostly follow each other, with a few such texts each.
    std::array<const RowText*, 4> last_{};
    std::size_t nextLast_ = 0;
};

}  // namespace quillon
