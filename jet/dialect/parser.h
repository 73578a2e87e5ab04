#pragma once

#include <vector>

#include "jet/dialect/syntax.h"
#include "jet/dialect/token.h"

namespace jet::dialect {

/// Parses one statement, with or without a semicolon at its end. All three throw Error(Syntax)
/// that names the place.
Statement ParseStatement(const TokenList& list);

/// Parses the criterion of a record set's Filter; positions of its literals are counted from
/// `firstLiteral`.
Expression ParseCriterion(const TokenList& list, std::size_t firstLiteral);

/// Parses a record set's Sort ("Header asc, Key desc").
std::vector<OrderItem> ParseOrder(const TokenList& list);

}  // namespace jet::dialect
