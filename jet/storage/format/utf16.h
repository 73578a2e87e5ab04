#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>

namespace jet::storage {

/// Walks over a UTF-8 text as UTF-16 units, without making a copy of it. Surrogates written as
/// three-byte sequences are passed through; every other byte that is no UTF-8 becomes U+FFFD.
class Utf16Reader {
  public:
    explicit Utf16Reader(std::string_view utf8) : text_(utf8) {}

    bool AtEnd() const { return position_ == text_.size() && lowSurrogate_ == 0; }

    /// The next unit; not to be called at the end.
    char16_t Next() {
        if (lowSurrogate_ == 0 && static_cast<unsigned char>(text_[position_]) < 0x80)
            return static_cast<char16_t>(text_[position_++]);
        return NextWide();
    }

  private:
    char16_t NextWide();
    char32_t DecodeSequence();

    std::string_view text_;
    std::size_t position_ = 0;
    char16_t lowSurrogate_ = 0;  ///< second half of a character already consumed
};

/// Collects UTF-16 units as UTF-8; a surrogate without its partner becomes a three-byte sequence.
class Utf8Writer {
  public:
    Utf8Writer() = default;
    /// Uses the memory of `old`, whose content goes.
    explicit Utf8Writer(std::string&& old) : text_(std::move(old)) { text_.clear(); }

    void Append(char16_t unit) {
        if (unit < 0x80 && highSurrogate_ == 0) {
            text_.push_back(static_cast<char>(unit));
        } else {
            AppendWide(unit);
        }
    }

    void Reserve(std::size_t bytes) { text_.reserve(bytes); }

    /// The text collected so far; the writer is used up.
    std::string Take();

  private:
    void AppendWide(char16_t unit);
    void AppendCodePoint(char32_t codePoint);

    std::string text_;
    char16_t highSurrogate_ = 0;  ///< waits for its partner
};

}  // namespace jet::storage
