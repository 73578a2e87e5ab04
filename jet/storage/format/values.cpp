#include "jet/storage/format/values.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "jet/error.h"
#include "jet/storage/format/page.h"

namespace jet::storage {

namespace {

constexpr std::size_t DecimalSize = 17;
constexpr std::uint8_t NegativeDecimal = 0x80;

void StoreDecimal(std::span<std::uint8_t> place, const Decimal& decimal) {
    place[0] = decimal.negative ? NegativeDecimal : 0;
    for (std::size_t word = 0; word < decimal.magnitude.size(); ++word)
        Store(place, 1 + sizeof(std::uint32_t) * word, decimal.magnitude[word]);
}

Decimal DecodeDecimal(std::span<const std::uint8_t> bytes, std::uint8_t scale) {
    Decimal decimal{.negative = (bytes[0] & NegativeDecimal) != 0, .scale = scale};
    for (std::size_t word = 0; word < decimal.magnitude.size(); ++word)
        decimal.magnitude[word] = Load<std::uint32_t>(bytes, 1 + 4 * word);
    return decimal;
}

/// The first three groups of a GUID are stored as little-endian numbers, its text form shows them
/// big-endian; the same exchange leads both ways.
std::array<std::uint8_t, 16> SwapGuidGroups(std::span<const std::uint8_t> bytes) {
    std::array<std::uint8_t, 16> swapped{};
    std::copy_n(bytes.begin(), swapped.size(), swapped.begin());
    std::reverse(swapped.begin(), swapped.begin() + 4);
    std::reverse(swapped.begin() + 4, swapped.begin() + 6);
    std::reverse(swapped.begin() + 6, swapped.begin() + 8);
    return swapped;
}

void MultiplyByTen(std::array<std::uint32_t, 4>& magnitude) {
    std::uint64_t carry = 0;
    for (std::size_t word = magnitude.size(); word-- > 0;) {
        carry += std::uint64_t{magnitude[word]} * 10;
        magnitude[word] = static_cast<std::uint32_t>(carry);
        carry >>= 32;
    }
    if (carry != 0)
        throw Error(ErrorKind::Overflow, "The decimal number has too many digits for its field.");
}

/// Returns the digit that falls off.
std::uint32_t DivideByTen(std::array<std::uint32_t, 4>& magnitude) {
    std::uint64_t rest = 0;
    for (std::uint32_t& word : magnitude) {
        rest = (rest << 32) | word;
        word = static_cast<std::uint32_t>(rest / 10);
        rest %= 10;
    }
    return static_cast<std::uint32_t>(rest);
}

void AddOne(std::array<std::uint32_t, 4>& magnitude) {
    for (std::size_t word = magnitude.size(); word-- > 0;)
        if (++magnitude[word] != 0) return;
}

[[noreturn]] void RefuseType() {
    throw Error(ErrorKind::TypeMismatch, "The value is not of its field's type.");
}

template <typename T>
const T& As(const Value& value) {
    const T* content = std::get_if<T>(&value);
    if (content == nullptr) RefuseType();
    return *content;
}

template <typename T>
void StoreInteger(std::span<std::uint8_t> place, const Value& value) {
    const std::int64_t number = As<std::int64_t>(value);
    if (number < std::numeric_limits<T>::min() || number > std::numeric_limits<T>::max())
        throw Error(ErrorKind::Overflow, "The number is out of its field's range.");
    Store(place, 0, static_cast<T>(number));
}

/// A double that is too great would become an infinity.
float ToSingle(double number) {
    if (std::isfinite(number) && std::abs(number) > std::numeric_limits<float>::max())
        throw Error(ErrorKind::Overflow, "The number is out of its field's range.");
    return static_cast<float>(number);
}

}  // namespace

Decimal Rescale(const Decimal& decimal, std::uint8_t scale) {
    Decimal result = decimal;
    result.scale = scale;
    for (std::uint8_t s = decimal.scale; s < scale; ++s)
        MultiplyByTen(result.magnitude);
    std::uint32_t dropped = 0;
    for (std::uint8_t s = decimal.scale; s > scale; --s)
        dropped = DivideByTen(result.magnitude);
    if (dropped >= 5) AddOne(result.magnitude);
    return result;
}

void StoreScalar(std::span<std::uint8_t> place, const Value& value, ColumnType type,
                 std::uint8_t decimalScale) {
    switch (type) {
        case ColumnType::Byte:
            return StoreInteger<std::uint8_t>(place, value);
        case ColumnType::Integer:
            return StoreInteger<std::int16_t>(place, value);
        case ColumnType::Long:
            return StoreInteger<std::int32_t>(place, value);
        case ColumnType::Currency:
            return Store(place, 0, As<Currency>(value).tenThousandths);
        case ColumnType::Single:
            return Store(place, 0, ToSingle(As<double>(value)));
        case ColumnType::Double:
            return Store(place, 0, As<double>(value));
        case ColumnType::Date:
            return Store(place, 0, As<Date>(value).days);
        case ColumnType::Guid:
            std::ranges::copy(SwapGuidGroups(As<Guid>(value).bytes), place.begin());
            return;
        case ColumnType::Decimal:
            return StoreDecimal(place, Rescale(As<Decimal>(value), decimalScale));
        case ColumnType::Binary:
        case ColumnType::Boolean:
        case ColumnType::Text:
        case ColumnType::Ole:
        case ColumnType::Memo:
            break;
    }
    RefuseType();
}

void AppendScalar(Bytes& bytes, const Value& value, ColumnType type, std::uint8_t decimalScale) {
    if (type == ColumnType::Binary) {
        const Bytes& content = As<Bytes>(value);
        bytes.insert(bytes.end(), content.begin(), content.end());
        return;
    }
    const std::size_t start = bytes.size();
    bytes.resize(start + FixedSize(type));
    StoreScalar(std::span(bytes).subspan(start), value, type, decimalScale);
}

Bytes EncodeScalar(const Value& value, ColumnType type, std::uint8_t decimalScale) {
    Bytes bytes;
    AppendScalar(bytes, value, type, decimalScale);
    return bytes;
}

Value DecodeScalar(std::span<const std::uint8_t> bytes, ColumnType type,
                   std::uint8_t decimalScale) {
    switch (type) {
        case ColumnType::Byte:
            return std::int64_t{bytes[0]};
        case ColumnType::Integer:
            return std::int64_t{Load<std::int16_t>(bytes, 0)};
        case ColumnType::Long:
            return std::int64_t{Load<std::int32_t>(bytes, 0)};
        case ColumnType::Currency:
            return Currency{Load<std::int64_t>(bytes, 0)};
        case ColumnType::Single:
            return double{Load<float>(bytes, 0)};
        case ColumnType::Double:
            return Load<double>(bytes, 0);
        case ColumnType::Date:
            return Date{Load<double>(bytes, 0)};
        case ColumnType::Binary:
            return Bytes(bytes.begin(), bytes.end());
        case ColumnType::Guid:
            return Guid{SwapGuidGroups(bytes)};
        case ColumnType::Decimal:
            return DecodeDecimal(bytes, decimalScale);
        case ColumnType::Boolean:
        case ColumnType::Text:
        case ColumnType::Ole:
        case ColumnType::Memo:
            break;
    }
    RefuseType();
}

std::size_t FixedSize(ColumnType type) {
    switch (type) {
        case ColumnType::Byte:
            return 1;
        case ColumnType::Integer:
            return 2;
        case ColumnType::Long:
        case ColumnType::Single:
            return 4;
        case ColumnType::Currency:
        case ColumnType::Double:
        case ColumnType::Date:
            return 8;
        case ColumnType::Guid:
            return 16;
        case ColumnType::Decimal:
            return DecimalSize;
        case ColumnType::Boolean:
        case ColumnType::Binary:
        case ColumnType::Text:
        case ColumnType::Ole:
        case ColumnType::Memo:
            break;
    }
    return 0;
}

}  // namespace jet::storage
