#include "platform/portable/jet_values.h"

#include <cmath>
#include <string>
#include <utility>

#include "jet/guid_text.h"
#include "platform/failure.h"

namespace quillon {
namespace {

double NumberOf(const jet::Decimal& decimal) {
    constexpr double WordRange = 4294967296.0;
    double number = 0;
    for (const std::uint32_t word : decimal.magnitude)
        number = number * WordRange + word;
    number /= std::pow(10.0, decimal.scale);
    return decimal.negative ? -number : number;
}

struct FromJetValue {
    std::string_view field;

    Value operator()(jet::Null) const { return Null{}; }
    Value operator()(bool value) const { return value; }
    Value operator()(std::int64_t value) const { return value; }
    Value operator()(double value) const { return value; }
    Value operator()(jet::Date value) const { return DateTime{value.days}; }
    Value operator()(jet::Currency value) const {
        return static_cast<double>(value.tenThousandths) / 10000;
    }
    Value operator()(const jet::Decimal& value) const { return NumberOf(value); }
    Value operator()(const jet::Guid& value) const { return jet::GuidText(value); }
    Value operator()(std::string&& value) const { return std::move(value); }
    Value operator()(const jet::Bytes&) const {
        throw Failure(FailureNumber::TypeMismatch, std::string(field));
    }
    Value operator()(const std::string& value) const { return value; }
};

struct ToJetValue {
    jet::Value operator()(Null) const { return jet::Null{}; }
    jet::Value operator()(DateTime value) const { return jet::Date{value.days}; }
    template <typename Same>
    jet::Value operator()(const Same& value) const {
        return value;
    }
};

/// Changes what is there where it has the type already, as fields mostly do: a text then keeps its
/// memory, and a number is only overwritten.
template <typename Type, typename Variant>
void Put(Variant& into, const Type& value) {
    if (auto* const room = std::get_if<Type>(&into)) {
        *room = value;
    } else {
        into = value;
    }
}

}  // namespace

Value FromJet(const jet::Value& value, std::string_view field) {
    return std::visit(FromJetValue{field}, value);
}

void FromJet(const jet::Value& value, std::string_view field, Value& into) {
    if (const auto* const text = std::get_if<std::string>(&value)) return Put(into, *text);
    if (const auto* const number = std::get_if<std::int64_t>(&value)) return Put(into, *number);
    if (const auto* const date = std::get_if<jet::Date>(&value))
        return Put(into, DateTime{date->days});
    into = FromJet(value, field);
}

void ExchangeFromJet(jet::Value& value, std::string_view field, Value& into) {
    auto* const text = std::get_if<std::string>(&value);
    auto* const earlier = std::get_if<std::string>(&into);
    if (text != nullptr && earlier != nullptr) {
        text->swap(*earlier);
    } else {
        into = std::visit(FromJetValue{field}, std::move(value));
    }
}

jet::Value ToJet(const Value& value) {
    return std::visit(ToJetValue{}, value);
}

void ToJet(const Value& value, jet::Value& converted) {
    if (const auto* const text = std::get_if<std::string>(&value)) return Put(converted, *text);
    if (const auto* const number = std::get_if<std::int64_t>(&value))
        return Put(converted, *number);
    if (const auto* const date = std::get_if<DateTime>(&value))
        return Put(converted, jet::Date{date->days});
    converted = ToJet(value);
}

}  // namespace quillon
