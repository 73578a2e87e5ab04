#pragma once

#include <array>
#include <compare>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace jet {

/// The absence of a value. An empty text is not Null.
struct Null {
    auto operator<=>(const Null&) const = default;
};

/// A date and time as an OLE date: whole days since 30 December 1899, the fraction is the time of
/// day. Below zero the fraction still counts forward (-1.25 is 29 December 1899, 06:00).
struct Date {
    double days = 0;
    auto operator<=>(const Date&) const = default;
};

/// A Currency value: a 64-bit count of ten-thousandths.
struct Currency {
    std::int64_t tenThousandths = 0;
    auto operator<=>(const Currency&) const = default;
};

/// A Decimal value: +/- magnitude / 10^scale; the magnitude is 128 bits, most significant word
/// first. `scale` is 0 to 28.
struct Decimal {
    bool negative = false;
    std::array<std::uint32_t, 4> magnitude{};
    std::uint8_t scale = 0;
    auto operator<=>(const Decimal&) const = default;
};

/// A GUID's 16 bytes in the order in which its text form shows them.
struct Guid {
    std::array<std::uint8_t, 16> bytes{};
    auto operator<=>(const Guid&) const = default;
};

using Bytes = std::vector<std::uint8_t>;

/// One field's content. Byte, Integer and Long fields are std::int64_t, Single and Double are
/// double, Text and Memo are UTF-8 std::string (a lone UTF-16 surrogate is kept as its three-byte
/// form, so that every stored text survives a round trip), Binary and OLE are Bytes.
using Value = std::variant<Null, bool, std::int64_t, double, Date, Currency, Decimal, Guid, Bytes,
                           std::string>;

/// A value for a name: a field of a row, or a parameter of a statement.
struct NamedValue {
    std::string_view name;
    Value value;
};

inline bool IsNull(const Value& value) {
    return std::holds_alternative<Null>(value);
}

}  // namespace jet
