#pragma once

#include <string>
#include <string_view>
#include <utility>
#include <variant>

#include "platform/database.h"

namespace quillon {

/// A text of a row. Null reads as the empty text, and is not the same.
class RowText {
  public:
    RowText() = default;
    /// Null unless the value is a text.
    explicit RowText(const Value& value) {
        if (const auto* const text = std::get_if<std::string>(&value)) *this = RowText(*text);
    }
    explicit RowText(std::string text) : text_(std::move(text)), isNull_(false) {}

    bool IsNull() const { return isNull_; }
    bool IsEmpty() const { return text_.empty(); }
    const std::string& Text() const { return text_; }
    operator const std::string&() const { return text_; }  // NOLINT: reads as a text
    operator std::string_view() const { return text_; }    // NOLINT: likewise
    friend bool operator==(const RowText& row, std::string_view text) { return row.text_ == text; }

  private:
    std::string text_;
    bool isNull_ = true;
};

}  // namespace quillon
