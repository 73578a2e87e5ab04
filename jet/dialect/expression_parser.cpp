#include "jet/dialect/expression_parser.h"

#include <algorithm>
#include <array>

namespace jet::dialect {

namespace {

using Kind = Expression::Kind;

/// Words that end an expression or a name, so that a forgotten name is noticed where it is missing.
bool IsKeyword(std::string_view word) {
    static constexpr std::array<std::string_view, 37> Keywords = {
        "select",  "from",   "where",  "group",    "by",          "having", "order", "inner",
        "join",    "on",     "as",     "and",      "or",          "not",    "in",    "like",
        "between", "is",     "null",   "true",     "false",       "set",    "into",  "values",
        "update",  "delete", "insert", "distinct", "distinctrow", "top",    "asc",   "desc",
        "mod",     "union",  "exists", "outer",    "xor"};
    return std::any_of(Keywords.begin(), Keywords.end(),
                       [word](std::string_view keyword) { return SameName(keyword, word); });
}

Expression Node(Kind kind, std::size_t place) {
    Expression node;
    node.kind = kind;
    node.place = place;
    return node;
}

/// Statements come from outside: neither nesting nor long chains must exhaust the stack.
constexpr int DeepestNesting = 100;
constexpr int MostOperators = 500;

/// Counts how deep an expression is nested while it lives.
class Nesting {
  public:
    Nesting(int& depth, const TokenReader& reader) : depth_(depth) {
        if (++depth_ > DeepestNesting) {
            --depth_;
            reader.Fail("the expression is nested too deeply");
        }
    }
    Nesting(const Nesting&) = delete;
    Nesting& operator=(const Nesting&) = delete;
    ~Nesting() { --depth_; }

  private:
    int& depth_;
};

}  // namespace

Expression ExpressionParser::Binary(std::string name, std::size_t place, Expression left,
                                    Expression right) {
    if (++operators_ > MostOperators) reader_.Fail("the statement has too many operators");
    Expression node = Node(Kind::Operator, place);
    node.name = std::move(name);
    node.operands.push_back(std::move(left));
    node.operands.push_back(std::move(right));
    return node;
}

Expression ExpressionParser::ParseChain(std::initializer_list<std::string_view> operators,
                                        Expression (ExpressionParser::*parseOperand)()) {
    const auto comesNext = [this](std::string_view name) {
        return reader_.IsSymbol(name) || reader_.IsWord(name);
    };
    Expression left = (this->*parseOperand)();
    for (;;) {
        const auto* const name = std::find_if(operators.begin(), operators.end(), comesNext);
        if (name == operators.end()) return left;
        const std::size_t place = reader_.Take().place;
        left = Binary(std::string(*name), place, std::move(left), (this->*parseOperand)());
    }
}

std::string ExpressionParser::ParseName(const char* what) {
    const Token& token = reader_.Peek();
    const bool bare = token.kind == Token::Kind::Word && !IsKeyword(token.text);
    if ((!bare && token.kind != Token::Kind::Name) || token.text.empty())
        reader_.Fail(std::string(what) + " is expected here");
    return std::string(reader_.Take().text);
}

Expression ExpressionParser::ParseColumn(bool mayBeStar) {
    Expression column = Node(Kind::Column, reader_.Peek().place);
    if (mayBeStar && reader_.TakeSymbol("*")) {
        column.kind = Kind::Star;
        return column;
    }
    column.name = ParseName("a field");
    if (!reader_.TakeSymbol(".") && !reader_.TakeSymbol("!")) return column;
    column.qualifier = std::move(column.name);
    if (mayBeStar && reader_.TakeSymbol("*")) {
        column.kind = Kind::Star;
        column.name.clear();
        return column;
    }
    // Behind the point no keyword can be meant: Albums.Group is a field.
    const Token& token = reader_.Peek();
    if (token.kind != Token::Kind::Word && token.kind != Token::Kind::Name)
        reader_.Fail("a field is expected here");
    column.name = std::string(reader_.Take().text);
    return column;
}

Expression ExpressionParser::ParseOr() {
    const Nesting nesting(depth_, reader_);
    return ParseChain({"OR", "XOR"}, &ExpressionParser::ParseAnd);
}

Expression ExpressionParser::ParseAnd() {
    return ParseChain({"AND"}, &ExpressionParser::ParseNot);
}

Expression ExpressionParser::ParseNot() {
    if (!reader_.IsWord("not")) return ParseComparison();
    const Nesting nesting(depth_, reader_);
    Expression node = Node(Kind::Not, reader_.Take().place);
    node.operands.push_back(ParseNot());
    return node;
}

Expression ExpressionParser::ParseComparison() {
    static constexpr std::array<std::string_view, 7> Signs = {"=",  "<>", "<", ">",
                                                              "<=", ">=", "!="};
    Expression left = ParsePredicate(ParseConcatenation());
    while (reader_.Peek().kind == Token::Kind::Symbol) {
        const auto* const sign = std::find(Signs.begin(), Signs.end(), reader_.Peek().text);
        if (sign == Signs.end()) break;
        const std::size_t place = reader_.Take().place;
        left = Binary(std::string(*sign == "!=" ? "<>" : *sign), place, std::move(left),
                      ParseConcatenation());
        left = ParsePredicate(std::move(left));
    }
    return left;
}

Expression ExpressionParser::ParsePredicate(Expression value) {
    while (true) {
        const std::size_t place = reader_.Peek().place;
        if (reader_.TakeWord("is")) {
            Expression node = Node(Kind::IsNull, place);
            node.negated = reader_.TakeWord("not");
            reader_.ExpectWord("null");
            node.operands.push_back(std::move(value));
            value = std::move(node);
            continue;
        }
        const bool negated =
            reader_.IsWord("not") &&
            (reader_.IsWord("in", 1) || reader_.IsWord("like", 1) || reader_.IsWord("between", 1));
        if (negated) reader_.Take();
        if (reader_.TakeWord("in")) {
            value = ParseIn(std::move(value), negated);
        } else if (reader_.TakeWord("like")) {
            value = ParseLike(std::move(value), negated);
        } else if (reader_.TakeWord("between")) {
            Expression node = Node(Kind::Between, place);
            node.negated = negated;
            node.operands.push_back(std::move(value));
            node.operands.push_back(ParseConcatenation());
            reader_.ExpectWord("and");
            node.operands.push_back(ParseConcatenation());
            value = std::move(node);
        } else {
            return value;
        }
    }
}

Expression ExpressionParser::ParseIn(Expression value, bool negated) {
    Expression node = Node(Kind::In, value.place);
    node.negated = negated;
    node.operands.push_back(std::move(value));
    reader_.ExpectSymbol("(");
    if (AtSelect()) {
        node.kind = Kind::InQuery;
        node.query = parseSelect_();
    } else {
        do {
            node.operands.push_back(Parse());
        } while (reader_.TakeSymbol(","));
    }
    reader_.ExpectSymbol(")");
    return node;
}

Expression ExpressionParser::ParseLike(Expression value, bool negated) {
    Expression node = Node(Kind::Like, value.place);
    node.negated = negated;
    node.operands.push_back(std::move(value));
    const Token& pattern = reader_.Peek();
    node.operands.push_back(ParseConcatenation());
    const bool isText =
        node.operands.back().kind == Kind::Parameter && pattern.kind == Token::Kind::Text;
    node.suffix =
        isText && IsSuffixPattern(std::get<std::string>(reader_.List().literals[pattern.literal]));
    return node;
}

Expression ExpressionParser::ParseConcatenation() {
    return ParseChain({"&"}, &ExpressionParser::ParseSum);
}

Expression ExpressionParser::ParseSum() {
    return ParseChain({"+", "-"}, &ExpressionParser::ParseModulo);
}

Expression ExpressionParser::ParseModulo() {
    return ParseChain({"MOD"}, &ExpressionParser::ParseWholeDivision);
}

Expression ExpressionParser::ParseWholeDivision() {
    return ParseChain({"\\"}, &ExpressionParser::ParseProduct);
}

Expression ExpressionParser::ParseProduct() {
    return ParseChain({"*", "/"}, &ExpressionParser::ParseSign);
}

Expression ExpressionParser::ParseSign() {
    const Nesting nesting(depth_, reader_);
    if (reader_.TakeSymbol("+")) return ParseSign();
    if (!reader_.IsSymbol("-")) return ParsePower();
    Expression node = Node(Kind::Negative, reader_.Take().place);
    node.operands.push_back(ParseSign());
    return node;
}

Expression ExpressionParser::ParsePower() {
    return ParseChain({"^"}, &ExpressionParser::ParseOperand);
}

Expression ExpressionParser::ParseOperand() {
    const Token& token = reader_.Peek();
    switch (token.kind) {
        case Token::Kind::Text:
        case Token::Kind::Number:
        case Token::Kind::Date:
        case Token::Kind::Parameter:
            return ParseLiteral();
        case Token::Kind::Symbol:
            if (token.text == "(") return ParseParenthesis();
            break;
        case Token::Kind::Word: {
            const std::size_t place = token.place;
            if (reader_.TakeWord("true")) return Node(Kind::True, place);
            if (reader_.TakeWord("false")) return Node(Kind::False, place);
            if (reader_.TakeWord("null")) return Node(Kind::Null, place);
            if (reader_.TakeWord("exists")) {
                Expression node = Node(Kind::Exists, place);
                reader_.ExpectSymbol("(");
                node.query = parseSelect_();
                reader_.ExpectSymbol(")");
                return node;
            }
            if (reader_.IsSymbol("(", 1) && !IsKeyword(token.text)) return ParseFunction();
            return ParseColumn(false);
        }
        case Token::Kind::Name:
            return ParseColumn(false);
        case Token::Kind::End:
            break;
    }
    reader_.Fail("a value or a field is expected here");
}

Expression ExpressionParser::ParseParenthesis() {
    const std::size_t place = reader_.Take().place;
    Expression inside;
    if (AtSelect()) {
        inside = Node(Kind::Query, place);
        inside.query = parseSelect_();
    } else {
        inside = Parse();
    }
    reader_.ExpectSymbol(")");
    return inside;
}

Expression ExpressionParser::ParseFunction() {
    Expression node = Node(Kind::Function, reader_.Peek().place);
    node.name = std::string(reader_.Take().text);
    reader_.ExpectSymbol("(");
    if (reader_.TakeSymbol(")")) return node;
    if (reader_.IsSymbol("*")) {
        node.operands.push_back(Node(Kind::Star, reader_.Take().place));
    } else {
        do {
            node.operands.push_back(Parse());
        } while (reader_.TakeSymbol(","));
    }
    reader_.ExpectSymbol(")");
    return node;
}

Expression ExpressionParser::ParseLiteral() {
    const bool parameter = IsParameter(reader_.List(), reader_.Position());
    const Token& token = reader_.Take();
    Expression node = Node(parameter ? Kind::Parameter : Kind::Number, token.place);
    node.literal = firstLiteral_ + token.literal;
    if (!parameter) node.name = std::string(token.text);
    node.literalKind = KindOf(reader_.List().literals[token.literal]);
    return node;
}

}  // namespace jet::dialect
