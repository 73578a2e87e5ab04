#include <cstddef>
#include <cstdint>
#include <string_view>
#include <utility>
#include <vector>

#include "fuzz/attempt.h"
#include "jet/dialect/names.h"
#include "jet/dialect/parser.h"
#include "jet/dialect/translate.h"

namespace {

using namespace jet;           // NOLINT(google-build-using-namespace)
using namespace jet::dialect;  // NOLINT(google-build-using-namespace)

const TableDefinition* FindTable(std::string_view name) {
    static const std::vector<TableDefinition> tables = {
        {"Albums",
         {{"ID", ColumnType::Long},
          {"CDJID", ColumnType::Text, 50},
          {"Title", ColumnType::Text},
          {"Artist", ColumnType::Text},
          {"Player", ColumnType::Integer},
          {"Tracks", ColumnType::Integer},
          {"NeverPlay", ColumnType::Boolean},
          {"DateAdded", ColumnType::Date}},
         {}},
        {"Tracks",
         {{"ID", ColumnType::Long},
          {"CDJID", ColumnType::Text, 50},
          {"Title", ColumnType::Text},
          {"Track", ColumnType::Integer},
          {"SoundFile", ColumnType::Text}},
         {}},
        {"Spinner",
         {{"ID", ColumnType::Long},
          {"Artist", ColumnType::Text},
          {"Album", ColumnType::Text},
          {"Song", ColumnType::Text},
          {"Genre", ColumnType::Text}},
         {}},
    };
    for (const TableDefinition& table : tables)
        if (SameName(table.name, name)) return &table;
    return nullptr;
}

void Translate(const Statement& statement) {
    const Catalog catalog = FindTable;
    if (const auto* select = std::get_if<Select>(&statement)) {
        TranslateQuery(*select, catalog);
        if (HasRowKeys(*select)) TranslateKeys(*select, catalog);
    } else if (const auto* update = std::get_if<Update>(&statement)) {
        TranslateUpdate(*update, catalog);
    } else if (const auto* deletion = std::get_if<Delete>(&statement)) {
        TranslateDelete(*deletion, catalog);
    } else {
        TranslateInsert(std::get<Insert>(statement), catalog);
    }
}

}  // namespace

/// Any text as a statement, and as the criterion of a record set: understood or refused, no more.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    fuzz::Attempt([text] {
        const TokenList tokens = Tokenize(text);
        Signature(tokens);
        Translate(ParseStatement(tokens));
    });
    fuzz::Attempt([text] {
        const TokenList tokens = Tokenize(text);
        const TokenList base = Tokenize("SELECT * FROM Tracks");
        Select select = std::get<Select>(ParseStatement(base));
        TranslateKeys(Compose(std::move(select), ParseCriterion(tokens, 0), {}), FindTable);
    });
    return 0;
}
