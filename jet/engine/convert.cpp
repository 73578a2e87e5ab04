#include "jet/engine/convert.h"

#include <cmath>
#include <limits>
#include <utility>

#include "jet/dialect/date_text.h"
#include "jet/dialect/names.h"
#include "jet/engine/decimal_text.h"
#include "jet/engine/number_text.h"
#include "jet/error.h"
#include "jet/guid_text.h"
#include "jet/storage/format/utf16.h"
#include "jet/storage/format/values.h"

namespace jet::engine {

namespace {

[[noreturn]] void FailType(const ColumnDefinition& column) {
    throw Error(ErrorKind::TypeMismatch,
                "Type mismatch: the value does not suit the field '" + column.name + "'");
}

[[noreturn]] void FailRange(const ColumnDefinition& column, const std::string& value) {
    throw Error(ErrorKind::Overflow,
                "Overflow: " + value + " does not fit into the field '" + column.name + "'");
}

[[noreturn]] void FailLength(const ColumnDefinition& column) {
    throw Error(ErrorKind::TooLong, "The field '" + column.name +
                                        "' is too small to accept the amount of data: it holds " +
                                        std::to_string(column.size));
}

double ToReal(const ColumnDefinition& column, const Value& value) {
    if (const auto* integer = std::get_if<std::int64_t>(&value))
        return static_cast<double>(*integer);
    if (const auto* real = std::get_if<double>(&value)) return *real;
    if (const auto* truth = std::get_if<bool>(&value)) return *truth ? -1 : 0;
    if (const auto* date = std::get_if<Date>(&value)) return date->days;
    if (const auto* money = std::get_if<Currency>(&value))
        return static_cast<double>(money->tenThousandths) / 10000;
    if (const auto* decimal = std::get_if<Decimal>(&value)) return DecimalToReal(*decimal);
    if (const auto* text = std::get_if<std::string>(&value))
        if (const auto number = ParseNumber(*text)) return *number;
    FailType(column);
}

Value ToWhole(const ColumnDefinition& column, const Value& value, std::int64_t least,
              std::int64_t most) {
    if (const auto* integer = std::get_if<std::int64_t>(&value)) {
        if (*integer < least || *integer > most) FailRange(column, std::to_string(*integer));
        return *integer;
    }
    const double number = RoundHalfEven(ToReal(column, value));
    if (!(number >= static_cast<double>(least) && number <= static_cast<double>(most)))
        FailRange(column, NumberText(number));
    return static_cast<std::int64_t>(number);
}

Value ToBoolean(const ColumnDefinition& column, const Value& value) {
    if (const auto* text = std::get_if<std::string>(&value)) {
        if (dialect::SameName(*text, "true")) return true;
        if (dialect::SameName(*text, "false")) return false;
    }
    return ToReal(column, value) != 0;
}

Value ToSingle(const ColumnDefinition& column, const Value& value) {
    const double number = ToReal(column, value);
    if (std::abs(number) > static_cast<double>(std::numeric_limits<float>::max()))
        FailRange(column, NumberText(number));
    return static_cast<double>(static_cast<float>(number));
}

/// Digit by digit, so that halves are told exactly.
Decimal ToDecimal(const ColumnDefinition& column, const Value& value, std::uint8_t precision,
                  std::uint8_t scale) {
    const double real = ToReal(column, value);  // refuses what is no number
    const auto* decimal = std::get_if<Decimal>(&value);
    const auto* written = std::get_if<std::string>(&value);
    std::optional<Decimal> converted;
    // More digits than a floating-point number has.
    if (written) converted = ParseDecimal(*written, precision, scale);
    if (!converted) {
        const std::string text = decimal ? DecimalText(*decimal) : FixedText(real);
        converted = ParseDecimal(text, precision, scale);
    }
    if (!converted) FailRange(column, NumberText(real));
    return *converted;
}

Value ToCurrency(const ColumnDefinition& column, const Value& value) {
    if (std::holds_alternative<Currency>(value)) return value;
    const Decimal decimal = ToDecimal(column, value, 0, 4);
    const auto& words = decimal.magnitude;
    const std::uint64_t magnitude = std::uint64_t{words[2]} << 32 | words[3];
    constexpr std::uint64_t Most = std::numeric_limits<std::int64_t>::max();
    if (words[0] != 0 || words[1] != 0 || magnitude > (decimal.negative ? Most + 1 : Most))
        FailRange(column, DecimalText(decimal));
    // The least amount has no counterpart above zero.
    return Currency{static_cast<std::int64_t>(decimal.negative ? ~magnitude + 1 : magnitude)};
}

/// The years 100 to 9999.
bool IsDate(double days) {
    static constexpr double First = -657434, End = 2958466;
    return days > First - 1 && days < End;
}

Value ToDate(const ColumnDefinition& column, const Value& value) {
    double days = 0;
    if (const auto* text = std::get_if<std::string>(&value)) {
        const auto parsed = dialect::ParseDate(*text);
        days = parsed ? *parsed : ToReal(column, value);
    } else {
        days = ToReal(column, value);
    }
    if (!IsDate(days)) FailRange(column, NumberText(days));
    return Date{days};
}

std::string FieldText(const ColumnDefinition& column, Value&& value) {
    if (auto* text = std::get_if<std::string>(&value)) return std::move(*text);
    if (const auto* integer = std::get_if<std::int64_t>(&value)) return std::to_string(*integer);
    if (const auto* truth = std::get_if<bool>(&value)) return *truth ? "True" : "False";
    if (const auto* date = std::get_if<Date>(&value)) return dialect::DateText(date->days);
    if (const auto* guid = std::get_if<Guid>(&value)) return GuidText(*guid);
    if (const auto* decimal = std::get_if<Decimal>(&value)) return DecimalText(*decimal);
    return NumberText(ToReal(column, value));
}

Value ToText(const ColumnDefinition& column, Value&& value) {
    std::string text = FieldText(column, std::move(value));
    std::size_t units = text.size();
    if (!storage::IsPlainAscii(text)) {
        // The storage keeps UTF-16: what comes back later must be what is seen now.
        storage::Utf8Writer kept;
        kept.Reserve(text.size());
        units = 0;
        for (storage::Utf16Reader reader(text); !reader.AtEnd(); ++units)
            kept.Append(reader.Next());
        text = kept.Take();
    }
    if (column.type == ColumnType::Text && column.size > 0 && units > column.size)
        FailLength(column);
    return text;
}

Value ToBytes(const ColumnDefinition& column, const Value& value) {
    const auto* bytes = std::get_if<Bytes>(&value);
    if (!bytes) FailType(column);
    const bool limited = column.type == ColumnType::Binary && column.size > 0;
    if (limited && bytes->size() > column.size) FailLength(column);
    return *bytes;
}

Value ToGuid(const ColumnDefinition& column, const Value& value) {
    if (std::holds_alternative<Guid>(value)) return value;
    if (const auto* text = std::get_if<std::string>(&value))
        if (const auto guid = ParseGuid(*text)) return *guid;
    FailType(column);
}

}  // namespace

bool IsAsStored(const ColumnDefinition& column, const Value& value) {
    if (IsNull(value)) return column.type != ColumnType::Boolean;
    if (column.type == ColumnType::Boolean) return std::holds_alternative<bool>(value);
    if (column.type == ColumnType::Double) return std::holds_alternative<double>(value);
    if (column.type == ColumnType::Long || column.type == ColumnType::Integer) {
        const auto* const number = std::get_if<std::int64_t>(&value);
        if (number == nullptr) return false;
        return column.type == ColumnType::Long ? *number == static_cast<std::int32_t>(*number)
                                               : *number == static_cast<std::int16_t>(*number);
    }
    if (column.type == ColumnType::Date) {
        const auto* const date = std::get_if<Date>(&value);
        return date != nullptr && IsDate(date->days);
    }
    if (column.type != ColumnType::Text && column.type != ColumnType::Memo) return false;
    const auto* const text = std::get_if<std::string>(&value);
    if (text == nullptr) return false;
    const bool isLimited = column.type == ColumnType::Text && column.size > 0;
    // Bytes are as many as units, or more.
    return (!isLimited || text->size() <= column.size) &&
           (storage::IsPlainAscii(*text) || storage::IsUsualText(*text));
}

Value ConvertToField(const ColumnDefinition& column, Value value) {
    if (IsNull(value)) {
        if (column.type == ColumnType::Boolean) return false;
        return value;
    }
    switch (column.type) {
        case ColumnType::Boolean:
            return ToBoolean(column, value);
        case ColumnType::Byte:
            return ToWhole(column, value, 0, 255);
        case ColumnType::Integer:
            return ToWhole(column, value, -32768, 32767);
        case ColumnType::Long:
            return ToWhole(column, value, std::numeric_limits<std::int32_t>::min(),
                           std::numeric_limits<std::int32_t>::max());
        case ColumnType::Currency:
            return ToCurrency(column, value);
        case ColumnType::Single:
            return ToSingle(column, value);
        case ColumnType::Double:
            return ToReal(column, value);
        case ColumnType::Date:
            return ToDate(column, value);
        case ColumnType::Binary:
        case ColumnType::Ole:
            return ToBytes(column, value);
        case ColumnType::Text:
        case ColumnType::Memo:
            return ToText(column, std::move(value));
        case ColumnType::Guid:
            return ToGuid(column, value);
        case ColumnType::Decimal:
            return ToDecimal(column, value, column.precision, column.scale);
    }
    FailType(column);
}

}  // namespace jet::engine
