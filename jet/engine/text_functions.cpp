#include <algorithm>
#include <string>

#include "jet/engine/function_arguments.h"
#include "jet/engine/number_text.h"
#include "jet/engine/text_order.h"

namespace jet::engine {

namespace {

constexpr bool IsContinuation(char c) {
    return (static_cast<unsigned char>(c) & 0xC0) == 0x80;
}

/// Where the character with this number (from 0) begins.
std::size_t OffsetOf(std::string_view text, std::int64_t character) {
    std::size_t at = 0;
    for (; character > 0 && at < text.size(); --character) {
        ++at;
        while (at < text.size() && IsContinuation(text[at]))
            ++at;
    }
    return at;
}

std::int64_t CountCharacters(std::string_view text) {
    return std::count_if(text.begin(), text.end(), [](char c) { return !IsContinuation(c); });
}

void Position(sqlite3_context* context, sqlite3_value** arguments) {
    const std::string text = FoldCase(TextOf(arguments[1]));
    const std::string wanted = FoldCase(TextOf(arguments[2]));
    const std::int64_t start = sqlite3_value_int64(arguments[0]);
    const std::size_t from = OffsetOf(text, start - 1);
    const std::size_t found = start < 1 ? std::string::npos : text.find(wanted, from);
    sqlite3_result_int64(context,
                         found == std::string::npos
                             ? 0
                             : CountCharacters(std::string_view(text).substr(0, found)) + 1);
}

void Right(sqlite3_context* context, sqlite3_value** arguments) {
    const std::string_view text = TextOf(arguments[0]);
    const std::int64_t wanted = std::max<std::int64_t>(0, sqlite3_value_int64(arguments[1]));
    SetText(context, text.substr(OffsetOf(text, CountCharacters(text) - wanted)));
}

std::string AsText(sqlite3_value* value) {
    if (sqlite3_value_type(value) == SQLITE_FLOAT) return NumberText(sqlite3_value_double(value));
    return std::string(TextOf(value));
}

/// a & b: a Null counts as an empty text, unless both are Null.
void Join(sqlite3_context* context, int, sqlite3_value** arguments) {
    std::string text;
    if (IsNull(arguments[0]) && IsNull(arguments[1])) return;
    if (!IsNull(arguments[0])) text += TextOf(arguments[0]);
    if (!IsNull(arguments[1])) text += TextOf(arguments[1]);
    SetText(context, text);
}

}  // namespace

void RegisterTextFunctions(sqlite3* database) {
    Define(database, "jet_lower", 1, [](sqlite3_context* context, sqlite3_value** arguments) {
        SetText(context, ToLower(TextOf(arguments[0])));
    });
    Define(database, "jet_upper", 1, [](sqlite3_context* context, sqlite3_value** arguments) {
        SetText(context, ToUpper(TextOf(arguments[0])));
    });
    Define(database, "jet_text", 1, [](sqlite3_context* context, sqlite3_value** arguments) {
        SetText(context, AsText(arguments[0]));
    });
    Define(database, "jet_suffix", 1, [](sqlite3_context* context, sqlite3_value** arguments) {
        const std::string key = SuffixKey(TextOf(arguments[0]));
        sqlite3_result_blob64(context, key.data(), key.size(), SQLITE_TRANSIENT);
    });
    Define(database, "jet_like", 2, [](sqlite3_context* context, sqlite3_value** arguments) {
        const bool matches = MatchesPattern(TextOf(arguments[0]), TextOf(arguments[1]));
        sqlite3_result_int(context, matches ? 1 : 0);
    });
    Define(database, "jet_position", 3, [](sqlite3_context* context, sqlite3_value** arguments) {
        Position(context, arguments);
    });
    Define(database, "jet_right", 2,
           [](sqlite3_context* context, sqlite3_value** arguments) { Right(context, arguments); });
    sqlite3_create_function_v2(database, "jet_join", 2,
                               SQLITE_UTF8 | SQLITE_DETERMINISTIC | SQLITE_INNOCUOUS, nullptr, Join,
                               nullptr, nullptr, nullptr);
}

}  // namespace jet::engine
