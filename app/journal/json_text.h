#pragma once

#include <array>
#include <charconv>
#include <concepts>
#include <string>
#include <string_view>

#include "platform/database.h"

namespace quillon {

/// Writes JSON straight into a text, without blanks: a first run has some hundred thousand lines of
/// it, with some twenty members each.
class JsonText {
  public:
    /// Appends to `text`, which must outlive this object.
    explicit JsonText(std::string& text) : text_(text) {}

    void Open() {
        text_ += '{';
        isFirst_ = true;
    }
    void Close() {
        text_ += '}';
        isFirst_ = false;
    }
    /// Of the member whose content comes next.
    void Name(std::string_view name);
    template <typename Content>
    void Member(std::string_view name, const Content& content) {
        Name(name);
        Put(content);
    }

    void Put(Null) { text_ += "null"; }
    void Put(bool value) { text_ += value ? "true" : "false"; }
    template <std::integral Number>
    void Put(Number value) {
        std::array<char, 32> digits{};
        PutDigits(digits, std::to_chars(digits.data(), digits.data() + digits.size(), value).ptr);
    }
    /// Always with a mark of fractions, so that it comes back as what it was.
    void Put(double value);
    /// The readable form is for people only; the days are exact.
    void Put(DateTime time);
    void Put(const std::string& text) { Put(std::string_view(text)); }
    /// Text as such where JSON can hold it; all else by its bytes.
    void Put(std::string_view text);
    void Put(const Value& value) {
        std::visit([this](const auto& content) { Put(content); }, value);
    }
    /// Hexadecimal digits in quotes.
    void PutHex(std::uint64_t number);

  private:
    void PutDigits(const std::array<char, 32>& digits, const char* end) {
        text_.append(digits.data(), static_cast<std::size_t>(end - digits.data()));
    }
    void PutEscaped(std::string_view text);
    void PutByteHex(unsigned char byte);

    std::string& text_;
    bool isFirst_ = true;
};

}  // namespace quillon
