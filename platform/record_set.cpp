#include <cmath>
#include <cstdio>

#include "platform/basic_text.h"
#include "platform/database.h"
#include "platform/failure.h"

namespace quillon {
namespace {

constexpr double LongRange = 9223372036854775808.0;  // 2^63

/// A number as the runtime prints it: fifteen digits at most.
std::string NumberText(double number) {
    char text[32];
    const int length = std::snprintf(text, sizeof text, "%.15G", number == 0 ? 0.0 : number);
    return {text, static_cast<std::size_t>(length)};
}

std::int64_t ToWhole(double number, std::string_view field) {
    const double rounded = std::nearbyint(number);
    if (!(rounded >= -LongRange && rounded < LongRange)) {
        throw Failure(FailureNumber::Overflow, std::string(field));
    }
    return static_cast<std::int64_t>(rounded);
}

struct AsText {
    std::string operator()(Null) const { return {}; }
    std::string operator()(bool value) const { return value ? "True" : "False"; }
    std::string operator()(std::int64_t value) const { return std::to_string(value); }
    std::string operator()(double value) const { return NumberText(value); }
    std::string operator()(DateTime value) const { return DateTimeText(value); }
    std::string operator()(const std::string& value) const { return value; }
};

struct AsInteger {
    std::string_view field;

    std::int64_t operator()(Null) const { return 0; }
    std::int64_t operator()(bool value) const { return value ? -1 : 0; }
    std::int64_t operator()(std::int64_t value) const { return value; }
    std::int64_t operator()(double value) const { return ToWhole(value, field); }
    std::int64_t operator()(DateTime value) const { return ToWhole(value.days, field); }
    std::int64_t operator()(const std::string& value) const {
        const std::optional<double> number = ToNumber(value);
        if (!number) throw Failure(FailureNumber::TypeMismatch, std::string(field));
        return ToWhole(*number, field);
    }
};

}  // namespace

std::string RecordSet::Text(std::string_view field) const {
    return std::visit(AsText{}, Get(field));
}

std::string RecordSet::Text(std::size_t field) const {
    return std::visit(AsText{}, Get(field));
}

std::int64_t RecordSet::Integer(std::string_view field) const {
    return std::visit(AsInteger{field}, Get(field));
}

}  // namespace quillon
