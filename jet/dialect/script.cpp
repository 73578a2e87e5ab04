#include <algorithm>

#include "jet/dialect/names.h"
#include "jet/dialect/token.h"
#include "jet/statement.h"

namespace jet {

namespace {

using dialect::Token;

bool IsBlank(char c) {
    return c == ' ' || c == '\t' || c == '\r' || c == '\n';
}

/// The character that ends what this one begins; 0 where it begins nothing.
char CloserOf(char c) {
    switch (c) {
        case '"':
        case '\'':
        case '`':
        case '#':
            return c;
        case '[':
            return ']';
        default:
            return 0;
    }
}

/// Behind blanks and lines of comment.
std::size_t SkipToStatement(std::string_view script, std::size_t at) {
    bool lineBegins = at == 0;
    while (at < script.size()) {
        if (IsBlank(script[at])) {
            lineBegins = lineBegins || script[at] == '\n';
            ++at;
        } else if (lineBegins && script.substr(at, 2) == "--") {
            at = std::min(script.find('\n', at), script.size());
        } else {
            break;
        }
    }
    return at;
}

std::size_t EndOfStatement(std::string_view script, std::size_t at) {
    while (at < script.size() && script[at] != ';') {
        const char closer = CloserOf(script[at]);
        at = closer == 0 ? at + 1 : script.find(closer, at + 1);
        if (at == std::string_view::npos) return script.size();
        if (closer != 0) ++at;
    }
    return at;
}

void AddHint(std::string_view pattern, std::vector<std::string>& hints) {
    const std::string shown = "Like '" + std::string(pattern) + "': ";
    if (pattern.find_first_of("*?") != std::string_view::npos) {
        std::string better(pattern);
        std::ranges::replace(better, '*', '%');
        std::ranges::replace(better, '?', '%');
        hints.push_back(shown +
                        "* and ? stand for themselves; % stands for any text, as in Like '" +
                        better + "'");
    } else if (dialect::IsSuffixPattern(pattern) &&
               pattern.find('%', 1) != std::string_view::npos) {
        hints.push_back(shown +
                        "begins with % and does not end with it, so it means texts that "
                        "end with '" +
                        std::string(pattern.substr(1)) + "', and the % in there stands for itself");
    }
}

}  // namespace

std::vector<ScriptStatement> SplitScript(std::string_view script) {
    std::vector<ScriptStatement> statements;
    std::size_t at = 0, line = 1, counted = 0;
    while (true) {
        at = SkipToStatement(script, at);
        if (at >= script.size()) return statements;
        const std::size_t end = EndOfStatement(script, at);
        std::string_view text = script.substr(at, end - at);
        while (!text.empty() && IsBlank(text.back()))
            text.remove_suffix(1);
        line += static_cast<std::size_t>(
            std::ranges::count(script.substr(counted, at - counted), '\n'));
        counted = at;
        if (!text.empty()) statements.push_back({text, line});
        at = std::min(end + 1, script.size());
    }
}

bool IsQuery(std::string_view sql) {
    const std::size_t first = sql.find_first_not_of(" \t\r\n");
    constexpr std::string_view Select = "select";
    return first != std::string_view::npos &&
           dialect::SameName(sql.substr(first, Select.size()), Select);
}

std::vector<std::string> HintsFor(std::string_view sql, std::span<const NamedValue> parameters) {
    const dialect::TokenList list = dialect::Tokenize(sql, parameters);
    std::vector<std::string> hints;
    for (std::size_t i = 1; i < list.tokens.size(); ++i) {
        const Token& token = list.tokens[i];
        const Token& before = list.tokens[i - 1];
        if (before.kind != Token::Kind::Word || !dialect::SameName(before.text, "like")) continue;
        if (token.kind != Token::Kind::Text && token.kind != Token::Kind::Parameter) continue;
        if (const auto* text = std::get_if<std::string>(&list.literals[token.literal]))
            AddHint(*text, hints);
    }
    return hints;
}

}  // namespace jet
