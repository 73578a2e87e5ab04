#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "jet/value.h"

namespace jet::dialect {

/// A value written in a statement or handed to it.
using Literal = Value;

/// The smallest part of a statement.
struct Token {
    enum class Kind {
        Word,  ///< a keyword or a bare name
        Name,  ///< a name between brackets or back-quotes
        Text,  ///< a text between single or double quotes
        Number,
        Date,       ///< between # signs
        Parameter,  ///< `:name`, whose value is handed to the statement
        Symbol,     ///< an operator or punctuation, `<>` and the like as one
        End,
    };
    Kind kind = Kind::End;
    std::string_view text;    ///< as written, without brackets or quotes
    std::size_t place = 0;    ///< column in the statement, from 0
    std::size_t literal = 0;  ///< Text to Parameter: position in TokenList::literals
};

/// A statement cut into tokens; the last one is Kind::End. The tokens refer to the statement's
/// text, which must outlive them.
struct TokenList {
    std::vector<Token> tokens;
    std::vector<Literal> literals;
};

/// Cuts a statement, criterion or sort order into tokens. Throws Error(Syntax) with the place of a
/// text, name or date that has no end, of a character that starts no token, or of a parameter that
/// is not among those given. Error(TooLong) for a statement of more than 16 MB.
TokenList Tokenize(std::string_view statement, std::span<const NamedValue> parameters = {});

/// Whether a number stands where its value may differ between two runs of the same compiled
/// statement: behind a comparison, or in the list of values of an INSERT. Every text, date and
/// parameter does.
/// Other numbers (`Left(x, 4)`, `TOP 5`, `ORDER BY 2`) are part of the statement itself.
bool IsParameter(const TokenList& list, std::size_t token);

/// Two statements with the same signature differ in nothing but the values of their parameters, so
/// that one compiled form serves both. It begins with `purpose`.
std::string Signature(const TokenList& list, std::string_view purpose = {});

/// A `Like` pattern that means "ends with the rest of the pattern": it begins with a percent sign,
/// goes on, and does not end with one. Percent signs after the first stand for themselves.
bool IsSuffixPattern(std::string_view pattern);

}  // namespace jet::dialect
