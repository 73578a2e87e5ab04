#include "jet/engine/selection.h"

#include "jet/dialect/parser.h"

namespace jet::engine {

namespace {

using dialect::TokenList;

bool IsEmpty(const TokenList& list) {
    return list.tokens.size() == 1;
}

dialect::Select ParseSelect(const TokenList& tokens) {
    dialect::Statement statement = dialect::ParseStatement(tokens);
    auto* select = std::get_if<dialect::Select>(&statement);
    if (!select)
        throw Error(ErrorKind::Syntax, "The statement yields no rows: a SELECT is expected");
    return std::move(*select);
}

}  // namespace

Selection::Selection(Session& session, std::string sql, Yields yields)
    : session_(session),
      sql_(std::move(sql)),
      yields_(yields),
      tokens_(dialect::Tokenize(sql_)),
      signature_((yields == Yields::Keys ? "keys " : "values ") + Signature(tokens_)) {
    Choose("", "");
}

void Selection::Filter(std::string_view criterion) {
    Choose(std::string(criterion), order_);
}

void Selection::Sort(std::string_view order) {
    Choose(filter_, std::string(order));
}

void Selection::Choose(const std::string& filter, const std::string& order) {
    const TokenList filterTokens = dialect::Tokenize(filter);
    const TokenList orderTokens = dialect::Tokenize(order);
    std::string signature = signature_;
    if (!IsEmpty(filterTokens))
        signature +=
            "\x1d"
            "filter " +
            Signature(filterTokens);
    if (!IsEmpty(orderTokens))
        signature +=
            "\x1d"
            "order " +
            Signature(orderTokens);
    plan_ = session_.FindPlan(signature, [&] {
        std::optional<dialect::Expression> criterion;
        if (!IsEmpty(filterTokens))
            criterion = dialect::ParseCriterion(filterTokens, tokens_.literals.size());
        std::vector<dialect::OrderItem> items;
        if (!IsEmpty(orderTokens)) items = dialect::ParseOrder(orderTokens);
        const dialect::Select select =
            Compose(ParseSelect(tokens_), std::move(criterion), std::move(items));
        if (yields_ == Yields::Values) return TranslateQuery(select, session_.Catalog());
        if (!HasRowKeys(select)) {
            throw Error(ErrorKind::NotSupported,
                        "Rows of this query stand for no stored rows and cannot be changed");
        }
        return TranslateKeys(select, session_.Catalog());
    });
    literals_ = tokens_.literals;
    literals_.insert(literals_.end(), filterTokens.literals.begin(), filterTokens.literals.end());
    filter_ = filter;
    order_ = order;
}

}  // namespace jet::engine
