#include "jet/storage/index/index_key.h"

#include <algorithm>
#include <array>
#include <bit>
#include <concepts>
#include <cstddef>

#include "jet/error.h"
#include "jet/storage/format/page.h"
#include "jet/storage/format/values.h"

namespace jet::storage {

namespace {

/// The byte in front of the part of a column that is not Null.
constexpr std::uint8_t ValueMarker(bool ascending) {
    return ascending ? 0x7F : 0x80;
}

void Invert(std::span<std::uint8_t> bytes) {
    for (std::uint8_t& byte : bytes)
        byte = static_cast<std::uint8_t>(~byte);
}

/// In both directions the sign byte of a Decimal is FF or 00; which bytes are inverted differs.
void AppendDecimal(Bytes& key, const Decimal& decimal, bool ascending) {
    key.push_back(decimal.negative ? 0x00 : 0xFF);
    const std::size_t start = key.size();
    for (const std::uint32_t word : decimal.magnitude)
        for (int shift = 24; shift >= 0; shift -= 8)
            key.push_back(static_cast<std::uint8_t>(word >> shift));
    if (decimal.negative == ascending) Invert(std::span(key).subspan(start));
}

/// Groups of eight bytes, each followed by 9 where another one comes, else by the number of its
/// bytes that count.
void AppendGroups(Bytes& key, std::span<const std::uint8_t> data, bool ascending) {
    constexpr std::size_t GroupSize = 8;
    constexpr std::uint8_t MoreFollows = 9;
    while (true) {
        const std::size_t size = std::min(GroupSize, data.size());
        const std::size_t start = key.size();
        key.insert(key.end(), data.begin(), data.begin() + static_cast<std::ptrdiff_t>(size));
        key.resize(start + GroupSize);
        const bool last = data.size() <= GroupSize;
        if (last) key.push_back(static_cast<std::uint8_t>(size));
        if (!ascending) Invert(std::span(key).subspan(start));
        if (last) return;
        key.push_back(MoreFollows);
        data = data.subspan(GroupSize);
    }
}

/// A text's key has been appended behind `start`.
void FinishText(Bytes& key, std::size_t start, bool ascending) {
    if (ascending) return;
    Invert(std::span(key).subspan(start));
    key.push_back(0);
}

/// Makes the stored bytes of a number those of its key: big-endian, the sign turned so that
/// negative numbers come first; of floating-point numbers below zero all bits are turned.
void TurnNumber(std::span<std::uint8_t> bytes, ColumnType type, bool ascending) {
    std::ranges::reverse(bytes);
    const bool isFloating =
        type == ColumnType::Single || type == ColumnType::Double || type == ColumnType::Date;
    if (isFloating && (bytes[0] & 0x80) != 0) {
        Invert(bytes);
    } else if (type != ColumnType::Byte) {
        bytes[0] ^= 0x80;
    }
    if (!ascending) Invert(bytes);
}

template <typename T>
const T& As(const Value& value) {
    const T* content = std::get_if<T>(&value);
    if (content == nullptr)
        throw Error(ErrorKind::TypeMismatch, "An indexed value is not of its field's type.");
    return *content;
}

}  // namespace

void AppendKey(Bytes& key, const Value& value, ColumnType type, std::uint8_t decimalScale,
               bool ascending) {
    if (IsNull(value)) {
        key.push_back(NullKey(ascending));
        return;
    }
    key.push_back(ValueMarker(ascending));
    const std::size_t start = key.size();
    switch (type) {
        case ColumnType::Boolean:
            key.push_back(As<bool>(value) == ascending ? 0x00 : 0xFF);
            break;
        case ColumnType::Byte:
        case ColumnType::Integer:
        case ColumnType::Long:
        case ColumnType::Currency:
        case ColumnType::Single:
        case ColumnType::Double:
        case ColumnType::Date:
            AppendScalar(key, value, type, 0);
            TurnNumber(std::span(key).subspan(start), type, ascending);
            break;
        case ColumnType::Decimal:
            AppendDecimal(key, Rescale(As<Decimal>(value), decimalScale), ascending);
            break;
        case ColumnType::Guid:
            AppendGroups(key, As<Guid>(value).bytes, ascending);
            break;
        case ColumnType::Binary:
            AppendGroups(key, As<Bytes>(value), ascending);
            break;
        case ColumnType::Text:
        case ColumnType::Memo:
            AppendTextKey(key, std::string_view(As<std::string>(value)));
            FinishText(key, start, ascending);
            break;
        case ColumnType::Ole:
            throw Error(ErrorKind::NotSupported, "A field of this type cannot be indexed.");
    }
}

void AppendStoredKey(Bytes& key, std::span<const std::uint8_t> stored, ColumnType type,
                     std::uint8_t decimalScale, bool ascending) {
    switch (type) {
        case ColumnType::Byte:
        case ColumnType::Integer:
        case ColumnType::Long:
        case ColumnType::Currency:
        case ColumnType::Single:
        case ColumnType::Double:
        case ColumnType::Date:
            key.push_back(ValueMarker(ascending));
            key.insert(key.end(), stored.begin(), stored.end());
            TurnNumber(std::span(key).last(stored.size()), type, ascending);
            break;
        case ColumnType::Text:
        case ColumnType::Memo: {
            key.push_back(ValueMarker(ascending));
            const std::size_t start = key.size();
            if (!IsCompressedText(stored) || !AppendPlainTextKey(key, stored.subspan(2))) {
                std::array<char16_t, LongestTextInKey> units;
                const std::size_t count = DecodeUnits(stored, units);
                AppendTextKey(key, std::u16string_view(units.data(), count));
            }
            FinishText(key, start, ascending);
            break;
        }
        default:
            AppendKey(key, DecodeScalar(stored, type, decimalScale), type, decimalScale, ascending);
            break;
    }
}

}  // namespace jet::storage
