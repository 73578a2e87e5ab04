#include "jet/dialect/parser.h"

#include <utility>

#include "jet/dialect/expression_parser.h"
#include "jet/dialect/schema_parser.h"

namespace jet::dialect {

namespace {

class Parser {
  public:
    Parser(const TokenList& list, std::size_t firstLiteral)
        : reader_(list), expressions_(reader_, firstLiteral, [this] {
              return std::make_shared<const Select>(ParseSelect());
          }) {}

    Statement ParseWhole() {
        Statement statement = ParseAny();
        reader_.ExpectEnd();
        return statement;
    }

    Expression ParseWholeCriterion() {
        Expression criterion = expressions_.Parse();
        reader_.ExpectEnd();
        return criterion;
    }

    std::vector<OrderItem> ParseWholeOrder() {
        std::vector<OrderItem> order = ParseOrderItems();
        reader_.ExpectEnd();
        return order;
    }

  private:
    Statement ParseAny() {
        if (reader_.IsWord("select")) return ParseSelect();
        if (reader_.TakeWord("update")) return ParseUpdate();
        if (reader_.TakeWord("delete")) return ParseDelete();
        if (reader_.TakeWord("insert")) return ParseInsert();
        if (reader_.TakeWord("create")) return SchemaParser(reader_, expressions_).ParseCreate();
        if (reader_.TakeWord("drop")) return SchemaParser(reader_, expressions_).ParseDrop();
        reader_.Fail("a statement begins with SELECT, INSERT, UPDATE, DELETE, CREATE or DROP");
    }

    /// A SELECT, or several with UNION between them. The latter become a query over their rows, so
    /// that ORDER BY, Filter and Sort mean those.
    Select ParseSelect() {
        Select first = ParseOneSelect();
        if (!reader_.IsWord("union")) return first;
        std::vector<UnionPart> parts;
        parts.push_back({std::make_shared<Select>(std::move(first)), true});
        while (reader_.TakeWord("union")) {
            if (parts.size() == MostParts) reader_.Fail("there are too many parts of a UNION");
            const bool all = reader_.TakeWord("all");
            if (parts.back().query->top || !parts.back().query->orderBy.empty())
                reader_.Fail("only the last SELECT of a UNION may have ORDER BY, and none TOP");
            parts.push_back({std::make_shared<Select>(ParseOneSelect()), all});
        }
        return OverUnion(std::move(parts));
    }

    Select OverUnion(std::vector<UnionPart> parts) const {
        Select last = *parts.back().query;
        if (last.top) reader_.Fail("no SELECT of a UNION may have TOP");
        Select whole;
        whole.orderBy = std::exchange(last.orderBy, {});
        parts.back().query = std::make_shared<const Select>(std::move(last));
        Source source;
        source.kind = Source::Kind::Union;
        source.parts = std::move(parts);
        whole.from.push_back(std::move(source));
        Expression star;
        star.kind = Expression::Kind::Star;
        whole.items.push_back({std::move(star), ""});
        return whole;
    }

    Select ParseOneSelect() {
        Select select;
        reader_.ExpectWord("select");
        while (true) {
            if (reader_.TakeWord("distinct") || reader_.TakeWord("distinctrow")) {
                select.distinct = true;
            } else if (reader_.TakeWord("top")) {
                select.top = ParseTop();
            } else if (!reader_.TakeWord("all")) {
                break;
            }
        }
        do {
            select.items.push_back(ParseItem());
        } while (reader_.TakeSymbol(","));
        if (reader_.TakeWord("from")) select.from = ParseSources();
        select.where = ParseWhere();
        if (reader_.TakeWord("group")) {
            reader_.ExpectWord("by");
            do {
                select.groupBy.push_back(expressions_.Parse());
            } while (reader_.TakeSymbol(","));
        }
        if (reader_.TakeWord("having")) select.having = expressions_.Parse();
        if (reader_.TakeWord("order")) {
            reader_.ExpectWord("by");
            select.orderBy = ParseOrderItems();
        }
        return select;
    }

    std::int64_t ParseTop() {
        const Token& token = reader_.Peek();
        const auto* count = token.kind == Token::Kind::Number
                                ? std::get_if<std::int64_t>(&reader_.List().literals[token.literal])
                                : nullptr;
        if (!count) reader_.Fail("a whole number is expected behind TOP");
        reader_.Take();
        return *count;
    }

    SelectItem ParseItem() {
        SelectItem item;
        const bool qualifiedStar =
            (reader_.IsSymbol(".", 1) || reader_.IsSymbol("!", 1)) && reader_.IsSymbol("*", 2);
        if (reader_.IsSymbol("*") || qualifiedStar) {
            item.value = expressions_.ParseColumn(true);
            return item;
        }
        item.value = expressions_.Parse();
        if (reader_.TakeWord("as")) item.alias = expressions_.ParseName("a name");
        return item;
    }

    std::vector<OrderItem> ParseOrderItems() {
        std::vector<OrderItem> order;
        do {
            OrderItem item;
            item.value = expressions_.Parse();
            item.descending = reader_.TakeWord("desc");
            if (!item.descending) reader_.TakeWord("asc");
            order.push_back(std::move(item));
        } while (reader_.TakeSymbol(","));
        return order;
    }

    std::optional<Expression> ParseWhere() {
        if (!reader_.TakeWord("where")) return std::nullopt;
        return expressions_.Parse();
    }

    std::vector<Source> ParseSources() {
        std::vector<Source> sources;
        do {
            sources.push_back(ParseSource());
        } while (reader_.TakeSymbol(","));
        return sources;
    }

    /// One source with the joins behind it: `a INNER JOIN b ON ... LEFT JOIN c ON ...`.
    Source ParseSource() {
        Source left = ParsePlainSource();
        while (const auto kind = TakeJoin()) {
            Source join;
            join.kind = *kind;
            join.place = reader_.Peek().place;
            join.sides.push_back(std::move(left));
            join.sides.push_back(ParsePlainSource());
            reader_.ExpectWord("on");
            join.condition = expressions_.Parse();
            left = std::move(join);
        }
        return left;
    }

    std::optional<Source::Kind> TakeJoin() {
        Source::Kind kind = Source::Kind::InnerJoin;
        const bool outer = reader_.IsWord("left") || reader_.IsWord("right");
        if (outer) {
            kind = reader_.IsWord("left") ? Source::Kind::LeftJoin : Source::Kind::RightJoin;
            reader_.Take();
            reader_.TakeWord("outer");
        } else if (!reader_.TakeWord("inner") && !reader_.IsWord("join")) {
            return std::nullopt;
        }
        reader_.ExpectWord("join");
        return kind;
    }

    Source ParsePlainSource() {
        Source source;
        source.place = reader_.Peek().place;
        if (reader_.TakeSymbol("(")) {
            if (++parentheses_ > MostParentheses) reader_.Fail("there are too many sources");
            if (!reader_.IsWord("select")) {
                source = ParseSource();
                reader_.ExpectSymbol(")");
                return source;
            }
            source.kind = Source::Kind::Query;
            source.query = std::make_shared<const Select>(ParseSelect());
            reader_.ExpectSymbol(")");
        } else {
            source.name = expressions_.ParseName("a table");
        }
        if (reader_.TakeWord("as") || StartsAlias())
            source.alias = expressions_.ParseName("a name");
        return source;
    }

    /// `Spinner Tmp` gives the alias without AS.
    bool StartsAlias() const {
        if (reader_.Peek().kind == Token::Kind::Name) return true;
        if (reader_.Peek().kind != Token::Kind::Word) return false;
        static constexpr std::string_view Followers[] = {"where", "group", "having", "order",
                                                         "inner", "left",  "right",  "join",
                                                         "on",    "set",   "union"};
        return std::none_of(std::begin(Followers), std::end(Followers),
                            [this](std::string_view word) { return reader_.IsWord(word); });
    }

    Update ParseUpdate() {
        Update update;
        update.target = ParseSource();
        reader_.ExpectWord("set");
        do {
            Assignment assignment;
            assignment.column = expressions_.ParseColumn(false);
            reader_.ExpectSymbol("=");
            assignment.value = expressions_.Parse();
            update.assignments.push_back(std::move(assignment));
        } while (reader_.TakeSymbol(","));
        update.where = ParseWhere();
        return update;
    }

    Delete ParseDelete() {
        Delete deletion;
        reader_.TakeWord("distinctrow");
        if (!reader_.IsWord("from")) {
            const Expression what = expressions_.ParseColumn(true);
            if (what.kind != Expression::Kind::Star)
                throw SyntaxError(what.place, what.name, "a row is deleted whole: * is expected");
            deletion.table = what.qualifier;
        }
        reader_.ExpectWord("from");
        deletion.from = ParseSources();
        deletion.where = ParseWhere();
        return deletion;
    }

    Insert ParseInsert() {
        Insert insert;
        reader_.ExpectWord("into");
        insert.table = expressions_.ParseName("a table");
        if (reader_.TakeSymbol("(")) {
            do {
                insert.columns.push_back(expressions_.ParseColumn(false).name);
            } while (reader_.TakeSymbol(","));
            reader_.ExpectSymbol(")");
        }
        if (reader_.IsWord("select")) {
            insert.query = std::make_shared<const Select>(ParseSelect());
            return insert;
        }
        reader_.ExpectWord("values");
        reader_.ExpectSymbol("(");
        Select values;
        do {
            SelectItem item;
            item.value = expressions_.Parse();
            values.items.push_back(std::move(item));
        } while (reader_.TakeSymbol(","));
        reader_.ExpectSymbol(")");
        insert.query = std::make_shared<const Select>(std::move(values));
        return insert;
    }

    static constexpr int MostParentheses = 100;
    static constexpr std::size_t MostParts = 400;

    TokenReader reader_;
    ExpressionParser expressions_;
    int parentheses_ = 0;
};

}  // namespace

Statement ParseStatement(const TokenList& list) {
    return Parser(list, 0).ParseWhole();
}

Expression ParseCriterion(const TokenList& list, std::size_t firstLiteral) {
    return Parser(list, firstLiteral).ParseWholeCriterion();
}

std::vector<OrderItem> ParseOrder(const TokenList& list) {
    return Parser(list, 0).ParseWholeOrder();
}

}  // namespace jet::dialect
