#include "jet/dialect/token.h"

#include <algorithm>
#include <array>
#include <charconv>

#include "jet/dialect/date_text.h"
#include "jet/dialect/digits.h"
#include "jet/dialect/names.h"
#include "jet/dialect/syntax_error.h"

namespace jet::dialect {

namespace {

bool IsBlank(char c) {
    return c == ' ' || c == '\t' || c == '\r' || c == '\n';
}
bool StartsName(char c) {
    return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || c == '_' ||
           static_cast<unsigned char>(c) >= 0x80;
}
bool ContinuesName(char c) {
    return StartsName(c) || IsDigit(c) || c == '$';
}

/// What is left of 16 MB of text when it is cut up takes some hundred MB.
constexpr std::size_t LongestStatement = std::size_t{16} << 20;

class Cutter {
  public:
    Cutter(std::string_view text, std::span<const NamedValue> parameters)
        : text_(text), parameters_(parameters) {
        list_.tokens.reserve(16);
    }

    TokenList Cut() {
        while (SkipBlanks(), at_ < text_.size())
            Next();
        Add(Token::Kind::End, text_.size(), 0);
        return std::move(list_);
    }

  private:
    void SkipBlanks() {
        while (at_ < text_.size() && IsBlank(text_[at_]))
            ++at_;
    }

    char Peek(std::size_t ahead) const {
        return at_ + ahead < text_.size() ? text_[at_ + ahead] : '\0';
    }

    Token& Add(Token::Kind kind, std::size_t from, std::size_t length) {
        return list_.tokens.emplace_back(Token{kind, text_.substr(from, length), from, 0});
    }

    void AddLiteral(Token& token, Literal value) {
        token.literal = list_.literals.size();
        list_.literals.push_back(std::move(value));
    }

    void Next() {
        const char c = text_[at_];
        if (StartsName(c)) {
            CutWord();
        } else if (IsDigit(c) || (c == '.' && IsDigit(Peek(1)))) {
            CutNumber();
        } else if (c == '"' || c == '\'') {
            CutText(c);
        } else if (c == '[') {
            CutName(']');
        } else if (c == '`') {
            CutName('`');
        } else if (c == '#') {
            CutDate();
        } else if (c == ':' && StartsName(Peek(1))) {
            CutParameter();
        } else {
            CutSymbol();
        }
    }

    void CutWord() {
        const std::size_t from = at_;
        while (at_ < text_.size() && ContinuesName(text_[at_]))
            ++at_;
        Add(Token::Kind::Word, from, at_ - from);
    }

    void CutNumber() {
        const std::size_t from = at_;
        bool whole = true;
        while (IsDigit(Peek(0)))
            ++at_;
        if (Peek(0) == '.') {
            whole = false;
            ++at_;
            while (IsDigit(Peek(0)))
                ++at_;
        }
        const bool signedExponent = (Peek(1) == '+' || Peek(1) == '-') && IsDigit(Peek(2));
        if ((Peek(0) == 'e' || Peek(0) == 'E') && (IsDigit(Peek(1)) || signedExponent)) {
            whole = false;
            at_ += 2;
            while (IsDigit(Peek(0)))
                ++at_;
        }
        Token& token = Add(Token::Kind::Number, from, at_ - from);
        AddLiteral(token, NumberValue(token, whole));
    }

    static Literal NumberValue(const Token& token, bool whole) {
        const char* const first = token.text.data();
        const char* const last = first + token.text.size();
        std::int64_t integer = 0;
        if (whole && std::from_chars(first, last, integer).ec == std::errc()) return integer;
        double real = 0;
        if (std::from_chars(first, last, real).ec != std::errc())
            throw SyntaxError(token.place, token.text, "the number is too large");
        return real;
    }

    void CutText(char quote) {
        const std::size_t from = at_ + 1;
        std::string value;
        std::size_t part = from;
        while (true) {
            const std::size_t end = text_.find(quote, part);
            if (end == std::string_view::npos)
                throw SyntaxError(from - 1, text_.substr(from - 1), "the text has no end");
            value.append(text_.substr(part, end - part));
            at_ = end + 1;
            if (Peek(0) != quote) break;
            value.push_back(quote);
            part = at_ + 1;
        }
        AddLiteral(Add(Token::Kind::Text, from, at_ - 1 - from), std::move(value));
    }

    void CutName(char close) {
        const std::size_t from = at_ + 1;
        const std::size_t end = text_.find(close, from);
        if (end == std::string_view::npos)
            throw SyntaxError(at_, text_.substr(at_), "the name has no end");
        Add(Token::Kind::Name, from, end - from);
        at_ = end + 1;
    }

    void CutDate() {
        const std::size_t from = at_ + 1;
        const std::size_t end = text_.find('#', from);
        if (end == std::string_view::npos)
            throw SyntaxError(at_, text_.substr(at_), "the date has no end");
        const auto days = ParseDate(text_.substr(from, end - from));
        if (!days) throw SyntaxError(at_, text_.substr(at_, end + 1 - at_), "this is no date");
        AddLiteral(Add(Token::Kind::Date, from, end - from), Date{*days});
        at_ = end + 1;
    }

    void CutParameter() {
        const std::size_t from = ++at_;
        while (at_ < text_.size() && ContinuesName(text_[at_]))
            ++at_;
        const std::string_view name = text_.substr(from, at_ - from);
        const auto given = std::ranges::find_if(parameters_, [name](const NamedValue& parameter) {
            return SameName(parameter.name, name);
        });
        if (given == parameters_.end())
            throw SyntaxError(from - 1, text_.substr(from - 1, name.size() + 1),
                              "this parameter has no value");
        AddLiteral(Add(Token::Kind::Parameter, from, name.size()), given->value);
    }

    void CutSymbol() {
        static constexpr std::array<std::string_view, 4> Pairs = {"<>", "<=", ">=", "!="};
        for (const std::string_view pair : Pairs) {
            if (text_.substr(at_, 2) != pair) continue;
            Add(Token::Kind::Symbol, at_, 2);
            at_ += 2;
            return;
        }
        static constexpr std::string_view Single = "=<>()+-*/\\^&,.;!";
        if (Single.find(text_[at_]) == std::string_view::npos)
            throw SyntaxError(at_, text_.substr(at_, 1), "this character has no meaning here");
        Add(Token::Kind::Symbol, at_, 1);
        ++at_;
    }

    std::string_view text_;
    std::span<const NamedValue> parameters_;
    std::size_t at_ = 0;
    TokenList list_;
};

bool IsComparison(const Token& token) {
    static constexpr std::array<std::string_view, 7> Signs = {"=",  "<>", "<", ">",
                                                              "<=", ">=", "!="};
    return token.kind == Token::Kind::Symbol &&
           std::find(Signs.begin(), Signs.end(), token.text) != Signs.end();
}

/// INSERT INTO t (a, b) VALUES (1, 2): every number behind VALUES differs from run to run.
bool IsInsertOfValues(const TokenList& list) {
    if (list.tokens.empty() || !SameName(list.tokens.front().text, "insert")) return false;
    return std::any_of(list.tokens.begin(), list.tokens.end(), [](const Token& token) {
        return token.kind == Token::Kind::Word && SameName(token.text, "values");
    });
}

}  // namespace

TokenList Tokenize(std::string_view statement, std::span<const NamedValue> parameters) {
    if (statement.size() > LongestStatement) {
        throw Error(ErrorKind::TooLong, "The statement has " + std::to_string(statement.size()) +
                                            " bytes; at most 16 MB are possible");
    }
    return Cutter(statement, parameters).Cut();
}

bool IsParameter(const TokenList& list, std::size_t token) {
    switch (list.tokens[token].kind) {
        case Token::Kind::Text:
        case Token::Kind::Date:
        case Token::Kind::Parameter:
            return true;
        case Token::Kind::Number:
            return token > 0 && (IsComparison(list.tokens[token - 1]) || IsInsertOfValues(list));
        default:
            return false;
    }
}

std::string Signature(const TokenList& list, std::string_view purpose) {
    static constexpr char Separator = '\x1f';
    std::string signature;
    signature.reserve(256);
    signature.append(purpose);
    for (std::size_t i = 0; i < list.tokens.size(); ++i) {
        const Token& token = list.tokens[i];
        if (token.kind == Token::Kind::Parameter) {
            // What a value is decides what is done with it.
            signature.push_back('\x03');
            signature.push_back(static_cast<char>('A' + list.literals[token.literal].index()));
        } else if (IsParameter(list, i)) {
            const auto* text = std::get_if<std::string>(&list.literals[token.literal]);
            const bool suffix = text && i > 0 && SameName(list.tokens[i - 1].text, "like") &&
                                IsSuffixPattern(*text);
            signature.push_back(suffix ? '\x02' : '\x01');
        } else {
            if (token.kind == Token::Kind::Name) signature.push_back('[');
            signature.append(token.text);
        }
        signature.push_back(Separator);
    }
    return signature;
}

bool IsSuffixPattern(std::string_view pattern) {
    return pattern.size() > 1 && pattern.front() == '%' && pattern.back() != '%';
}

}  // namespace jet::dialect
