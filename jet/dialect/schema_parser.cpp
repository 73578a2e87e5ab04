#include "jet/dialect/schema_parser.h"

#include <algorithm>
#include <array>
#include <string>

namespace jet::dialect {

namespace {

struct TypeName {
    std::string_view name;
    ColumnType type;
};

/// The names that Access SQL knows, and those of SQL that mean the same.
constexpr auto TypeNames = std::to_array<TypeName>({
    {"yesno", ColumnType::Boolean},
    {"bit", ColumnType::Boolean},
    {"boolean", ColumnType::Boolean},
    {"logical", ColumnType::Boolean},
    {"byte", ColumnType::Byte},
    {"tinyint", ColumnType::Byte},
    {"short", ColumnType::Integer},
    {"smallint", ColumnType::Integer},
    {"integer2", ColumnType::Integer},
    {"long", ColumnType::Long},
    {"int", ColumnType::Long},
    {"integer", ColumnType::Long},
    {"integer4", ColumnType::Long},
    {"counter", ColumnType::Long},
    {"autoincrement", ColumnType::Long},
    {"currency", ColumnType::Currency},
    {"money", ColumnType::Currency},
    {"single", ColumnType::Single},
    {"real", ColumnType::Single},
    {"float4", ColumnType::Single},
    {"double", ColumnType::Double},
    {"float", ColumnType::Double},
    {"float8", ColumnType::Double},
    {"number", ColumnType::Double},
    {"datetime", ColumnType::Date},
    {"date", ColumnType::Date},
    {"time", ColumnType::Date},
    {"timestamp", ColumnType::Date},
    {"binary", ColumnType::Binary},
    {"varbinary", ColumnType::Binary},
    {"text", ColumnType::Text},
    {"char", ColumnType::Text},
    {"varchar", ColumnType::Text},
    {"string", ColumnType::Text},
    {"longbinary", ColumnType::Ole},
    {"oleobject", ColumnType::Ole},
    {"image", ColumnType::Ole},
    {"general", ColumnType::Ole},
    {"memo", ColumnType::Memo},
    {"longtext", ColumnType::Memo},
    {"note", ColumnType::Memo},
    {"guid", ColumnType::Guid},
    {"uniqueidentifier", ColumnType::Guid},
    {"decimal", ColumnType::Decimal},
    {"numeric", ColumnType::Decimal},
    {"dec", ColumnType::Decimal},
});

constexpr std::uint16_t DefaultSize = 255, LargestBinary = 510;
constexpr std::uint8_t DefaultPrecision = 18, LargestPrecision = 28;

IndexDefinition OnLastColumn(const TableDefinition& table, std::string name) {
    IndexDefinition index;
    index.name = std::move(name);
    index.columns.push_back({table.columns.size() - 1, true});
    return index;
}

void MakePrimary(IndexDefinition& index) {
    index.primary = index.unique = index.required = true;
}

}  // namespace

std::string_view TypeNameOf(ColumnType type) {
    const auto* const found =
        std::find_if(TypeNames.begin(), TypeNames.end(),
                     [type](const TypeName& name) { return name.type == type; });
    return found == TypeNames.end() ? "" : found->name;
}

Statement SchemaParser::ParseCreate() {
    if (reader_.TakeWord("table")) return ParseTable();
    const bool unique = reader_.TakeWord("unique");
    if (reader_.TakeWord("index")) return ParseIndex(unique);
    reader_.Fail("CREATE makes a TABLE or an INDEX");
}

Statement SchemaParser::ParseDrop() {
    Drop drop;
    if (reader_.TakeWord("table")) {
        drop.table = expressions_.ParseName("a table");
    } else if (reader_.TakeWord("index")) {
        drop.index = expressions_.ParseName("an index");
        reader_.ExpectWord("on");
        drop.table = expressions_.ParseName("a table");
    } else {
        reader_.Fail("DROP removes a TABLE or an INDEX");
    }
    return drop;
}

CreateTable SchemaParser::ParseTable() {
    CreateTable create;
    create.definition.name = expressions_.ParseName("a name for the table");
    reader_.ExpectSymbol("(");
    do {
        const bool constraint = reader_.IsWord("constraint") || reader_.IsWord("primary") ||
                                (reader_.IsWord("unique") && reader_.IsSymbol("(", 1));
        if (constraint) {
            ParseConstraint(create.definition);
        } else {
            ParseColumn(create.definition);
        }
    } while (reader_.TakeSymbol(","));
    reader_.ExpectSymbol(")");
    return create;
}

void SchemaParser::ParseColumn(TableDefinition& table) {
    ColumnDefinition column;
    column.name = expressions_.ParseName("a name for a field");
    ParseType(column);
    table.columns.push_back(std::move(column));
    ParseColumnRules(table);
}

std::uint16_t SchemaParser::ParseSize(std::string_view what, std::uint16_t most) {
    const Token& token = reader_.Peek();
    const auto* size = token.kind == Token::Kind::Number
                           ? std::get_if<std::int64_t>(&reader_.List().literals[token.literal])
                           : nullptr;
    if (!size || *size < 0 || *size > most)
        reader_.Fail(std::string(what) + " is a number up to " + std::to_string(most));
    reader_.Take();
    return static_cast<std::uint16_t>(*size);
}

void SchemaParser::ParseType(ColumnDefinition& column) {
    const Token token = reader_.Peek();
    const auto* const known =
        std::find_if(TypeNames.begin(), TypeNames.end(),
                     [&](const TypeName& type) { return SameName(type.name, token.text); });
    if (token.kind != Token::Kind::Word || known == TypeNames.end()) {
        reader_.Fail(
            "a type is expected here: YESNO, BYTE, SHORT, LONG, COUNTER, CURRENCY, "
            "SINGLE, DOUBLE, DECIMAL, DATETIME, TEXT(n), MEMO, BINARY(n), LONGBINARY or "
            "GUID");
    }
    reader_.Take();
    column.type = known->type;
    column.autoNumber = SameName(token.text, "counter") || SameName(token.text, "autoincrement");
    const bool isText = column.type == ColumnType::Text,
               isBinary = column.type == ColumnType::Binary;
    if (isText || isBinary) column.size = DefaultSize;
    if (column.type == ColumnType::Decimal) column.precision = DefaultPrecision;
    if (!reader_.TakeSymbol("(")) return;
    if (isText) {
        column.size = ParseSize("the size of a text (use MEMO for longer ones)", DefaultSize);
    } else if (isBinary) {
        column.size = ParseSize("the size of a binary field", LargestBinary);
    } else if (column.type == ColumnType::Decimal) {
        column.precision = static_cast<std::uint8_t>(ParseSize("the precision", LargestPrecision));
        if (reader_.TakeSymbol(","))
            column.scale = static_cast<std::uint8_t>(ParseSize("the scale", column.precision));
    } else {
        reader_.Fail("this type has no size");
    }
    reader_.ExpectSymbol(")");
}

void SchemaParser::ParseColumnRules(TableDefinition& table) {
    ColumnDefinition& column = table.columns.back();
    while (true) {
        std::string name;
        if (reader_.TakeWord("constraint")) name = expressions_.ParseName("a name");
        if (reader_.TakeWord("not")) {
            reader_.ExpectWord("null");
            column.required = true;
        } else if (reader_.TakeWord("primary")) {
            reader_.ExpectWord("key");
            table.indexes.push_back(OnLastColumn(table, name.empty() ? "PrimaryKey" : name));
            MakePrimary(table.indexes.back());
        } else if (reader_.TakeWord("unique")) {
            table.indexes.push_back(OnLastColumn(table, name.empty() ? column.name : name));
            table.indexes.back().unique = true;
        } else if (reader_.IsWord("default") || reader_.IsWord("references") ||
                   reader_.IsWord("check")) {
            reader_.Fail("defaults, relationships and checks cannot be made here");
        } else {
            if (!name.empty()) reader_.Fail("PRIMARY KEY, UNIQUE or NOT NULL is expected here");
            return;
        }
    }
}

void SchemaParser::ParseConstraint(TableDefinition& table) {
    IndexDefinition index;
    if (reader_.TakeWord("constraint")) index.name = expressions_.ParseName("a name");
    if (reader_.TakeWord("primary")) {
        reader_.ExpectWord("key");
        MakePrimary(index);
        if (index.name.empty()) index.name = "PrimaryKey";
    } else if (reader_.TakeWord("unique")) {
        index.unique = true;
    } else {
        reader_.Fail("PRIMARY KEY or UNIQUE is expected here; relationships cannot be made");
    }
    reader_.ExpectSymbol("(");
    do {
        const Token token = reader_.Peek();
        const std::string field = expressions_.ParseName("a field");
        const auto column = table.FindColumn(field);
        if (!column) throw SyntaxError(token.place, token.text, "the table has no such field");
        index.columns.push_back({*column, true});
        if (index.name.empty()) index.name = field;
    } while (reader_.TakeSymbol(","));
    reader_.ExpectSymbol(")");
    table.indexes.push_back(std::move(index));
}

CreateIndex SchemaParser::ParseIndex(bool unique) {
    CreateIndex create;
    create.definition.unique = unique;
    create.definition.name = expressions_.ParseName("a name for the index");
    reader_.ExpectWord("on");
    create.table = expressions_.ParseName("a table");
    reader_.ExpectSymbol("(");
    do {
        CreateIndex::Field field{expressions_.ParseName("a field"), true};
        if (reader_.TakeWord("desc")) {
            field.ascending = false;
        } else {
            reader_.TakeWord("asc");
        }
        create.fields.push_back(std::move(field));
    } while (reader_.TakeSymbol(","));
    reader_.ExpectSymbol(")");
    if (!reader_.TakeWord("with")) return create;
    do {
        if (reader_.TakeWord("primary")) {
            MakePrimary(create.definition);
        } else if (reader_.TakeWord("disallow")) {
            reader_.ExpectWord("null");
            create.definition.required = true;
        } else if (reader_.TakeWord("ignore")) {
            reader_.ExpectWord("null");
            create.definition.ignoreNulls = true;
        } else {
            reader_.Fail("PRIMARY, DISALLOW NULL or IGNORE NULL is expected here");
        }
    } while (reader_.TakeSymbol(","));
    return create;
}

}  // namespace jet::dialect
