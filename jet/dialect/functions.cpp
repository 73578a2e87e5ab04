#include "jet/dialect/functions.h"

#include <algorithm>
#include <array>

#include "jet/dialect/names.h"

namespace jet::dialect {

namespace {

using K = ValueKind;

/// Functions named jet_... are defined by the engine; all others are SQLite's own. First and Last
/// get a second argument, the row's place in the storage, from the translator.
constexpr auto Rules = std::to_array<FunctionRule>({
    {"Count", 1, "count($1)", K::Number, 0, true},
    {"Sum", 1, "sum($1)", K::Number, 0, true},
    {"Avg", 1, "avg($1)", K::Number, 0, true},
    {"Min", 1, "min($1)", K::Any, 1, true},
    {"Max", 1, "max($1)", K::Any, 1, true},
    {"First", 1, "jet_first($1)", K::Any, 1, true},
    {"Last", 1, "jet_last($1)", K::Any, 1, true},
    {"Left", 2, "substr($1,1,max(0,$2))", K::Text},
    {"Right", 2, "jet_right($1,$2)", K::Text},
    {"Mid", 2, "substr($1,$2)", K::Text},
    {"Mid", 3, "substr($1,$2,max(0,$3))", K::Text},
    {"Len", 1, "length($1)", K::Number},
    {"LCase", 1, "jet_lower($1)", K::Text},
    {"UCase", 1, "jet_upper($1)", K::Text},
    {"Trim", 1, "trim($1)", K::Text},
    {"LTrim", 1, "ltrim($1)", K::Text},
    {"RTrim", 1, "rtrim($1)", K::Text},
    {"InStr", 2, "jet_position(1,$1,$2)", K::Number},
    {"InStr", 3, "jet_position($1,$2,$3)", K::Number},
    {"Replace", 3, "replace($1,$2,$3)", K::Text},
    {"Space", 1, "printf('%*s',$1,'')", K::Text},
    {"Chr", 1, "char($1)", K::Text},
    {"Asc", 1, "unicode($1)", K::Number},
    {"Val", 1, "jet_value($1)", K::Number},
    {"Int", 1, "jet_floor($1)", K::Number},
    {"Fix", 1, "jet_truncate($1)", K::Number},
    {"Abs", 1, "abs($1)", K::Any, 1},
    {"Sgn", 1, "jet_sign($1)", K::Number},
    {"Sqr", 1, "jet_power($1,0.5)", K::Number},
    {"Round", 1, "jet_round($1,0)", K::Number},
    {"Round", 2, "jet_round($1,$2)", K::Number},
    {"CInt", 1, "jet_round($1,0)", K::Number},
    {"CLng", 1, "jet_round($1,0)", K::Number},
    {"CDbl", 1, "CAST($1 AS REAL)", K::Number},
    {"CStr", 1, "$1", K::Text},
    {"CDate", 1, "jet_date($1)", K::Date},
    {"CBool", 1, "($1)<>0", K::Boolean, 0, false, true},
    {"Nz", 1, "ifnull($1,'')", K::Any},
    {"Nz", 2, "ifnull($1,$2)", K::Any, 1},
    {"IIf", 3, "CASE WHEN $1 THEN $2 ELSE $3 END", K::Any, 2},
    {"IsNull", 1, "($1) IS NULL", K::Boolean, 0, false, true},
    {"Now", 0, "jet_now()", K::Date},
    {"Date", 0, "CAST(CAST(jet_now() AS INTEGER) AS REAL)", K::Date},
    {"Time", 0, "jet_now()-CAST(jet_now() AS INTEGER)", K::Date},
    {"Year", 1, "jet_date_part(0,$1)", K::Number},
    {"Month", 1, "jet_date_part(1,$1)", K::Number},
    {"Day", 1, "jet_date_part(2,$1)", K::Number},
    {"Hour", 1, "jet_date_part(3,$1)", K::Number},
    {"Minute", 1, "jet_date_part(4,$1)", K::Number},
    {"Second", 1, "jet_date_part(5,$1)", K::Number},
});

}  // namespace

ValueKind KindOf(ColumnType type) {
    switch (type) {
        case ColumnType::Boolean:
            return ValueKind::Boolean;
        case ColumnType::Byte:
        case ColumnType::Integer:
        case ColumnType::Long:
        case ColumnType::Single:
        case ColumnType::Double:
            return ValueKind::Number;
        case ColumnType::Currency:
            return ValueKind::Currency;
        case ColumnType::Date:
            return ValueKind::Date;
        case ColumnType::Binary:
        case ColumnType::Ole:
            return ValueKind::Binary;
        case ColumnType::Text:
        case ColumnType::Memo:
            return ValueKind::Text;
        case ColumnType::Guid:
            return ValueKind::Guid;
        case ColumnType::Decimal:
            return ValueKind::Decimal;
    }
    return ValueKind::Any;
}

ValueKind KindOf(const Value& value) {
    struct Kinds {
        ValueKind operator()(Null) const { return ValueKind::Any; }
        ValueKind operator()(bool) const { return ValueKind::Boolean; }
        ValueKind operator()(std::int64_t) const { return ValueKind::Number; }
        ValueKind operator()(double) const { return ValueKind::Number; }
        ValueKind operator()(Date) const { return ValueKind::Date; }
        ValueKind operator()(Currency) const { return ValueKind::Currency; }
        ValueKind operator()(const Decimal&) const { return ValueKind::Decimal; }
        ValueKind operator()(const Guid&) const { return ValueKind::Guid; }
        ValueKind operator()(const Bytes&) const { return ValueKind::Binary; }
        ValueKind operator()(const std::string&) const { return ValueKind::Text; }
    };
    return std::visit(Kinds{}, value);
}

const FunctionRule* FindFunction(std::string_view name, std::size_t arguments) {
    const auto found = std::find_if(Rules.begin(), Rules.end(), [&](const FunctionRule& rule) {
        return rule.arguments == arguments && SameName(rule.name, name);
    });
    return found == Rules.end() ? nullptr : &*found;
}

bool IsFunction(std::string_view name) {
    return std::any_of(Rules.begin(), Rules.end(),
                       [name](const FunctionRule& rule) { return SameName(rule.name, name); });
}

}  // namespace jet::dialect
