#pragma once

#include <algorithm>
#include <array>
#include <charconv>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>

#include "platform/ascii.h"
#include "platform/database.h"

namespace quillon {

/// Writes JSON without blanks. A first run has some hundred thousand lines of it, with some twenty
/// members each: so the memory of one text is good for the next, and names and dates, of which most
/// rows have the same ones, are put into words once.
class JsonText {
  public:
    /// What has been written since Clear(); valid until more is.
    std::string_view Text() const { return {memory_.data(), size_}; }
    void Clear() {
        size_ = 0;
        isFirst_ = true;
    }

    void Open() {
        Append('{');
        isFirst_ = true;
    }
    void Close() {
        Append('}');
        isFirst_ = false;
    }
    /// Of the member whose content comes next.
    void Name(std::string_view name) {
        const std::size_t comma = isFirst_ ? 0 : 1;
        const KnownName& known = Known(name);
        const std::size_t length = known.written.size();
        char* const place = Room(comma + std::max(length, known.beginning.size()));
        *place = ',';
        // So many bytes that the compiler knows their number: nearly all names have no more.
        std::memcpy(place + comma, known.beginning.data(), known.beginning.size());
        if (length > known.beginning.size())
            std::memcpy(place + comma, known.written.data(), length);
        size_ += comma + length;
        isFirst_ = false;
    }
    template <typename Content>
    void Member(std::string_view name, const Content& content) {
        Name(name);
        Put(content);
    }

    void Put(Null) { Append("null"); }
    void Put(bool value) { Append(value ? std::string_view("true") : "false"); }
    template <std::integral Number>
    void Put(Number value) {
        char* const place = Room(MostDigits);
        size_ +=
            static_cast<std::size_t>(std::to_chars(place, place + MostDigits, value).ptr - place);
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
    static constexpr std::size_t MostDigits = 32;

    /// A date in its written form.
    struct KnownDate {
        DateTime time;
        std::string text;
    };
    /// The name of a member likewise, with its quotes and the colon behind it.
    struct KnownName {
        std::string name, written;
        std::array<char, 24> beginning{};  ///< of what is written, zeros behind its end
    };

    /// Where so many bytes can be put.
    char* Room(std::size_t count) {
        if (memory_.size() - size_ < count) memory_.resize(2 * memory_.size() + count);
        return memory_.data() + size_;
    }
    void Append(char byte) {
        *Room(1) = byte;
        ++size_;
    }
    void Append(std::string_view bytes) {
        std::memcpy(Room(bytes.size()), bytes.data(), bytes.size());
        size_ += bytes.size();
    }
    const KnownName& Known(std::string_view name) {
        // These tell the names of all rows and records apart.
        constexpr std::size_t FirstFactor = 4, MiddleFactor = 2, SizeFactor = 10;
        std::size_t mixed = SizeFactor * name.size();
        if (!name.empty()) {
            mixed += static_cast<unsigned char>(name.back()) +
                     FirstFactor * static_cast<unsigned char>(name.front()) +
                     MiddleFactor * static_cast<unsigned char>(name[name.size() / 2]);
        }
        KnownName& known = names_[mixed % names_.size()];
        if (known.written.empty() || !ascii::AreSame(known.name, name)) Learn(known, name);
        return known;
    }
    void Learn(KnownName& known, std::string_view name);
    void PutBytes(std::string_view bytes);

    std::string memory_ = std::string(4096, '\0');
    std::size_t size_ = 0;
    bool isFirst_ = true;
    std::array<KnownDate, 2> dates_;  ///< the last ones
    std::size_t nextDate_ = 0;
    std::array<KnownName, 128> names_;  ///< some that have been met, by what tells most apart
};

}  // namespace quillon
