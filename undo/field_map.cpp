#include "undo/field_map.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstdint>
#include <type_traits>
#include <variant>

namespace quillon {
namespace {

// An entry: the name's length in two bytes, the name, the place of its type in Value, and the
// content: of a text its length in four bytes before it.
constexpr std::size_t NameSize = 2;

template <typename Number>
void PutNumber(std::string& bytes, Number number) {
    const auto raw = std::bit_cast<std::array<char, sizeof(Number)>>(number);
    bytes.append(raw.data(), raw.size());
}

template <typename Number>
Number NumberAt(std::string_view bytes) {
    std::array<char, sizeof(Number)> raw{};
    std::ranges::copy(bytes.substr(0, raw.size()), raw.begin());
    return std::bit_cast<Number>(raw);
}

struct Put {
    std::string& bytes;

    void operator()(Null) const {}
    void operator()(bool yes) const { bytes += yes ? '\1' : '\0'; }
    void operator()(std::int64_t number) const { PutNumber(bytes, number); }
    // The two zeros are one value.
    void operator()(double number) const { PutNumber(bytes, number == 0 ? 0.0 : number); }
    void operator()(DateTime time) const { (*this)(time.days); }
    void operator()(const std::string& text) const {
        PutNumber(bytes, static_cast<std::uint32_t>(text.size()));
        bytes += text;
    }
};

/// Bytes of the content that begins there.
std::size_t ContentSize(std::size_t type, std::string_view content) {
    switch (type) {
        case 0:
            return 0;
        case 1:
            return 1;
        case 5:
            return sizeof(std::uint32_t) + NumberAt<std::uint32_t>(content);
        default:
            return sizeof(double);
    }
}

Value ContentOf(std::size_t type, std::string_view content) {
    switch (type) {
        case 0:
            return Null();
        case 1:
            return content.front() != '\0';
        case 2:
            return NumberAt<std::int64_t>(content);
        case 3:
            return NumberAt<double>(content);
        case 4:
            return DateTime{NumberAt<double>(content)};
        default:
            return std::string(content.substr(sizeof(std::uint32_t)));
    }
}
static_assert(
    std::is_same_v<Value, std::variant<Null, bool, std::int64_t, double, DateTime, std::string>>);

std::string_view NameAt(std::string_view entry) {
    return entry.substr(NameSize, NumberAt<std::uint16_t>(entry));
}

std::size_t EntrySize(std::string_view entry) {
    const std::size_t head = NameSize + NumberAt<std::uint16_t>(entry) + 1;
    return head + ContentSize(static_cast<std::uint8_t>(entry[head - 1]), entry.substr(head));
}

std::string EntryOf(std::string_view name, const Value& value) {
    std::string entry;
    PutNumber(entry, static_cast<std::uint16_t>(name.size()));
    entry += name;
    entry += static_cast<char>(value.index());
    std::visit(Put{entry}, value);
    return entry;
}

}  // namespace

void FieldMap::Iterator::Read() {
    if (rest_.empty()) return;
    const std::string_view name = NameAt(rest_);
    const std::size_t head = NameSize + name.size() + 1;
    const auto type = static_cast<std::uint8_t>(rest_[head - 1]);
    entry_.first = name;
    entry_.second = ContentOf(type, rest_.substr(head, ContentSize(type, rest_.substr(head))));
}

FieldMap::Iterator& FieldMap::Iterator::operator++() {
    rest_.remove_prefix(EntrySize(rest_));
    Read();
    return *this;
}

std::size_t FieldMap::size() const {
    std::size_t count = 0;
    for (std::string_view rest = bytes_; !rest.empty(); rest.remove_prefix(EntrySize(rest)))
        ++count;
    return count;
}

FieldMap::Iterator FieldMap::find(std::string_view name) const {
    const auto [begin, size] = PlaceOf(name);
    return size == 0 ? end() : Iterator(std::string_view(bytes_).substr(begin));
}

std::pair<std::size_t, std::size_t> FieldMap::PlaceOf(std::string_view name) const {
    std::string_view rest = bytes_;
    while (!rest.empty()) {
        const std::string_view here = NameAt(rest);
        if (here == name) return {bytes_.size() - rest.size(), EntrySize(rest)};
        if (here > name) break;
        rest.remove_prefix(EntrySize(rest));
    }
    return {bytes_.size() - rest.size(), 0};
}

void FieldMap::Set(std::string_view name, const Value& value) {
    const auto [begin, size] = PlaceOf(name);
    bytes_.replace(begin, size, EntryOf(name, value));
}

void FieldMap::SetIfNew(std::string_view name, const Value& value) {
    const auto [begin, size] = PlaceOf(name);
    if (size == 0) bytes_.insert(begin, EntryOf(name, value));
}

}  // namespace quillon
