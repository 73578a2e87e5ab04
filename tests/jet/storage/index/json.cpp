#include "tests/jet/storage/index/json.h"

#include <cctype>
#include <cstdlib>
#include <stdexcept>
#include <utility>

#include "jet/storage/format/utf16.h"

namespace jet::test {

class JsonParser {
  public:
    explicit JsonParser(std::string_view text) : text_(text) {}

    Json ParseAll() {
        Json value = ParseValue();
        SkipBlanks();
        if (position_ != text_.size()) Fail();
        return value;
    }

  private:
    [[noreturn]] void Fail() const {
        throw std::runtime_error("no JSON at byte " + std::to_string(position_));
    }

    char Peek() const { return position_ < text_.size() ? text_[position_] : '\0'; }

    char Take() {
        if (position_ == text_.size()) Fail();
        return text_[position_++];
    }

    void Expect(char wanted) {
        if (Take() != wanted) Fail();
    }

    bool TakeIf(char wanted) {
        SkipBlanks();
        if (Peek() != wanted) return false;
        ++position_;
        return true;
    }

    bool TakeWord(std::string_view word) {
        if (!text_.substr(position_).starts_with(word)) return false;
        position_ += word.size();
        return true;
    }

    void SkipBlanks() {
        while (std::isspace(static_cast<unsigned char>(Peek())) != 0)
            ++position_;
    }

    // NOLINTNEXTLINE(misc-no-recursion)
    Json ParseValue() {
        SkipBlanks();
        Json value;
        if (Peek() == '{') {
            value.content_ = ParseObject();
        } else if (Peek() == '[') {
            value.content_ = ParseArray();
        } else if (Peek() == '"') {
            value.content_ = ParseText();
        } else if (TakeWord("true")) {
            value.content_ = true;
        } else if (TakeWord("false")) {
            value.content_ = false;
        } else if (!TakeWord("null")) {
            value.content_ = ParseNumber();
        }
        return value;
    }

    double ParseNumber() {
        const std::string digits(text_.substr(position_, 64));
        char* end = nullptr;
        const double number = std::strtod(digits.c_str(), &end);
        if (end == digits.c_str()) Fail();
        position_ += static_cast<std::size_t>(end - digits.c_str());
        return number;
    }

    // NOLINTNEXTLINE(misc-no-recursion)
    Json::Array ParseArray() {
        Json::Array items;
        Expect('[');
        if (TakeIf(']')) return items;
        do {
            items.push_back(ParseValue());
        } while (TakeIf(','));
        Expect(']');
        return items;
    }

    // NOLINTNEXTLINE(misc-no-recursion)
    Json::Object ParseObject() {
        Json::Object members;
        Expect('{');
        if (TakeIf('}')) return members;
        do {
            SkipBlanks();
            std::string name = ParseText();
            if (!TakeIf(':')) Fail();
            members.insert_or_assign(std::move(name), ParseValue());
        } while (TakeIf(','));
        Expect('}');
        return members;
    }

    std::string ParseText() {
        Expect('"');
        std::string plain;
        storage::Utf8Writer writer;
        while (Peek() != '"') {
            if (Peek() != '\\') {
                plain.push_back(Take());
                continue;
            }
            FlushInto(writer, plain);
            ++position_;
            writer.Append(ParseEscape());
        }
        ++position_;
        FlushInto(writer, plain);
        return writer.Take();
    }

    static void FlushInto(storage::Utf8Writer& writer, std::string& plain) {
        for (storage::Utf16Reader reader(plain); !reader.AtEnd();)
            writer.Append(reader.Next());
        plain.clear();
    }

    char16_t ParseEscape() {
        switch (const char letter = Take()) {
            case 'n':
                return u'\n';
            case 't':
                return u'\t';
            case 'r':
                return u'\r';
            case 'b':
                return u'\b';
            case 'f':
                return u'\f';
            case 'u': {
                const std::string digits(text_.substr(position_, 4));
                position_ += digits.size();
                return static_cast<char16_t>(std::strtoul(digits.c_str(), nullptr, 16));
            }
            default:
                return static_cast<char16_t>(letter);
        }
    }

    std::string_view text_;
    std::size_t position_ = 0;
};

Json Json::Parse(std::string_view text) {
    return JsonParser(text).ParseAll();
}

const Json& Json::operator[](std::string_view name) const {
    const auto found = Members().find(name);
    if (found == Members().end()) throw std::runtime_error("no member " + std::string(name));
    return found->second;
}

}  // namespace jet::test
