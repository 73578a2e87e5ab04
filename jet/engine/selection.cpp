#include "jet/engine/selection.h"

#include "jet/dialect/parser.h"

namespace jet::engine {

namespace {

using dialect::TokenList;

/// Without tokens where there is nothing but blanks.
TokenList TokensOf(const std::string& text) {
    TokenList list;
    if (text.empty()) return list;
    list = dialect::Tokenize(text);
    if (list.tokens.size() == 1) list.tokens.clear();  // the end
    return list;
}

dialect::Select ParseSelect(const TokenList& tokens) {
    dialect::Statement statement = dialect::ParseStatement(tokens);
    auto* select = std::get_if<dialect::Select>(&statement);
    if (!select)
        throw Error(ErrorKind::Syntax, "The statement yields no rows: a SELECT is expected");
    return std::move(*select);
}

}  // namespace

Selection::Selection(Session& session, std::string sql, Yields yields,
                     std::span<const NamedValue> parameters)
    : session_(session),
      sql_(std::move(sql)),
      yields_(yields),
      tokens_(dialect::Tokenize(sql_, parameters)),
      signature_(Signature(tokens_, yields == Yields::Keys ? "keys " : "values ")) {
    Choose("", "");
}

void Selection::Filter(std::string_view criterion) {
    Choose(std::string(criterion), order_);
}

void Selection::Sort(std::string_view order) {
    Choose(filter_, std::string(order));
}

void Selection::Choose(const std::string& filter, const std::string& order) {
    if (filter.empty() && order.empty()) {
        plan_ = FindPlan(signature_, {}, {});
        literals_ = tokens_.literals;
    } else {
        const TokenList filterTokens = TokensOf(filter);
        const TokenList orderTokens = TokensOf(order);
        std::string signature = signature_;
        if (!filterTokens.tokens.empty())
            signature += Signature(filterTokens,
                                   "\x1d"
                                   "filter ");
        if (!orderTokens.tokens.empty())
            signature += Signature(orderTokens,
                                   "\x1d"
                                   "order ");
        plan_ = FindPlan(signature, filterTokens, orderTokens);
        literals_ = tokens_.literals;
        literals_.insert(literals_.end(), filterTokens.literals.begin(),
                         filterTokens.literals.end());
    }
    filter_ = filter;
    order_ = order;
}

std::shared_ptr<Plan> Selection::FindPlan(const std::string& signature, const TokenList& filter,
                                          const TokenList& order) const {
    if (auto plan = session_.FindPlan(signature)) return plan;
    std::optional<dialect::Expression> criterion;
    if (!filter.tokens.empty())
        criterion = dialect::ParseCriterion(filter, tokens_.literals.size());
    std::vector<dialect::OrderItem> items;
    if (!order.tokens.empty()) items = dialect::ParseOrder(order);
    const dialect::Select select =
        Compose(ParseSelect(tokens_), std::move(criterion), std::move(items));
    if (yields_ == Yields::Values)
        return session_.AddPlan(signature, TranslateQuery(select, session_.Catalog()));
    if (!HasRowKeys(select)) {
        throw Error(ErrorKind::NotSupported,
                    "Rows of this query stand for no stored rows and cannot be changed");
    }
    return session_.AddPlan(signature, TranslateKeys(select, session_.Catalog()));
}

}  // namespace jet::engine
