#include "jet/engine/transfer.h"

#include <cmath>
#include <limits>

#include "jet/engine/decimal_text.h"
#include "jet/engine/number_text.h"
#include "jet/guid_text.h"

namespace jet::engine {

namespace {

using dialect::ValueKind;

struct Binder {
    Statement& statement;
    int parameter;

    void operator()(Null) const { statement.BindNull(parameter); }
    void operator()(bool value) const { statement.Bind(parameter, std::int64_t{value ? -1 : 0}); }
    void operator()(std::int64_t value) const { statement.Bind(parameter, value); }
    void operator()(double value) const { statement.Bind(parameter, value); }
    void operator()(Date value) const { statement.Bind(parameter, value.days); }
    void operator()(Currency value) const {
        statement.Bind(parameter, static_cast<double>(value.tenThousandths) / 10000);
    }
    void operator()(const Decimal& value) const { statement.Bind(parameter, DecimalToReal(value)); }
    void operator()(const Guid& value) const { statement.BindText(parameter, GuidText(value)); }
    void operator()(const Bytes& value) const {
        statement.BindBytes(parameter, {reinterpret_cast<const char*>(value.data()), value.size()});
    }
    void operator()(const std::string& value) const { statement.BindText(parameter, value); }
};

Value ReadDynamic(const Statement& statement, int column) {
    if (statement.IsInteger(column)) return statement.Integer(column);
    if (statement.IsText(column)) return std::string(statement.Text(column));
    if (statement.IsBytes(column)) {
        const auto bytes = statement.Bytes(column);
        return Bytes(bytes.begin(), bytes.end());
    }
    return statement.Real(column);
}

/// The largest amounts are beyond what numbers between can be told by: they end where the type
/// ends.
Currency ToCurrency(double number) {
    using Limits = std::numeric_limits<std::int64_t>;
    const double tenThousandths = RoundHalfEven(number * 10000);
    if (tenThousandths >= static_cast<double>(Limits::max())) return {Limits::max()};
    if (tenThousandths <= static_cast<double>(Limits::min())) return {Limits::min()};
    return {static_cast<std::int64_t>(tenThousandths)};
}

Decimal ToDecimal(double number) {
    std::string text = FixedText(number);
    if (text.find('.') != std::string::npos) text.erase(text.find_last_not_of('0') + 1);
    const std::size_t point = text.find('.');
    const std::size_t places = point == std::string::npos ? 0 : text.size() - point - 1;
    const auto scale = static_cast<std::uint8_t>(std::min<std::size_t>(places, 28));
    return ParseDecimal(text, 0, scale).value_or(Decimal{});
}

}  // namespace

void BindValue(Statement& statement, int parameter, const Value& value) {
    std::visit(Binder{statement, parameter}, value);
}

Value ReadValue(const Statement& statement, int column, ValueKind kind) {
    if (statement.IsNull(column)) return Null{};
    switch (kind) {
        case ValueKind::Boolean:
            return statement.Integer(column) != 0;
        case ValueKind::Date:
            return Date{statement.Real(column)};
        case ValueKind::Currency:
            return ToCurrency(statement.Real(column));
        case ValueKind::Decimal:
            return ToDecimal(statement.Real(column));
        case ValueKind::Guid:
            if (const auto guid = ParseGuid(statement.Text(column))) return *guid;
            break;
        case ValueKind::Text:
            return std::string(statement.Text(column));
        case ValueKind::Any:
        case ValueKind::Number:
        case ValueKind::Binary:
            break;
    }
    return ReadDynamic(statement, column);
}

}  // namespace jet::engine
