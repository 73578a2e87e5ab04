#pragma once

#include <functional>
#include <initializer_list>
#include <memory>
#include <string>
#include <string_view>

#include "jet/dialect/syntax.h"
#include "jet/dialect/token_reader.h"

namespace jet::dialect {

/// Parses expressions, loosest operators first: OR, AND, NOT, comparisons, &, + and -, MOD, \,
/// * and /, sign, ^.
class ExpressionParser {
  public:
    using SelectParser = std::function<std::shared_ptr<const Select>()>;

    /// `parseSelect` is called where a subquery begins; the reader stands on its SELECT.
    ExpressionParser(TokenReader& reader, std::size_t firstLiteral, SelectParser parseSelect)
        : reader_(reader), firstLiteral_(firstLiteral), parseSelect_(std::move(parseSelect)) {}

    Expression Parse() { return ParseOr(); }

    /// A column, with or without its table; also `*` and `table.*` where `mayBeStar`.
    Expression ParseColumn(bool mayBeStar);

    /// A bare or bracketed name that is no keyword.
    std::string ParseName(const char* what);

  private:
    /// Operands with any of these operators between them, the left ones bound first. Operators are
    /// symbols or upper-case words.
    Expression ParseChain(std::initializer_list<std::string_view> operators,
                          Expression (ExpressionParser::*parseOperand)());
    Expression ParseOr();
    Expression ParseAnd();
    Expression ParseNot();
    Expression ParseComparison();
    Expression ParsePredicate(Expression value);
    Expression ParseIn(Expression value, bool negated);
    Expression ParseLike(Expression value, bool negated);
    Expression ParseConcatenation();
    Expression ParseSum();
    Expression ParseModulo();
    Expression ParseWholeDivision();
    Expression ParseProduct();
    Expression ParseSign();
    Expression ParsePower();
    Expression ParseOperand();
    Expression ParseParenthesis();
    Expression ParseFunction();
    Expression ParseLiteral();
    Expression Binary(std::string name, std::size_t place, Expression left, Expression right);
    bool AtSelect() const { return reader_.IsWord("select"); }

    TokenReader& reader_;
    std::size_t firstLiteral_;
    SelectParser parseSelect_;
    int depth_ = 0;
    int operators_ = 0;
};

}  // namespace jet::dialect
