#include "tests/support/database_rows.h"

#include <memory>
#include <stdexcept>
#include <variant>

#include "platform/date_time.h"
#include "tests/outside/command.h"
#include "tests/outside/structural_check.h"

namespace quillon::support {
namespace {

namespace fs = std::filesystem;

struct TextOfValue {
    std::string operator()(Null) const { return "Null"; }
    std::string operator()(bool value) const { return value ? "True" : "False"; }
    std::string operator()(std::int64_t value) const { return std::to_string(value); }
    std::string operator()(double value) const { return std::to_string(value); }
    std::string operator()(DateTime value) const {
        return value == DateTime{} ? "0" : DateTimeText(value);
    }
    std::string operator()(const std::string& value) const { return value; }
};

}  // namespace

std::string ValueText(const Value& value) {
    return std::visit(TextOfValue{}, value);
}

std::vector<std::string> Rows(Connection& connection, std::string_view sql) {
    std::vector<std::string> texts;
    const std::unique_ptr<RecordSet> rows = connection.Query(sql);
    for (; !rows->IsEof(); rows->MoveNext()) {
        std::string text;
        for (std::size_t field = 0; field < rows->FieldCount(); ++field)
            text += (field == 0 ? "" : "|") + ValueText(rows->Get(field));
        texts.push_back(std::move(text));
    }
    return texts;
}

std::string StructuralFaults(const fs::path& database) {
    return outside::StructuralFaults(database, outside::Strictness::Strict);
}

std::string ExportedTable(const fs::path& database, std::string_view table) {
    const outside::CommandResult exported =
        outside::RunCommand("mdb-export " + outside::ShellQuoted(database.string()) + " " +
                            outside::ShellQuoted(table));
    if (exported.status != 0)
        throw std::runtime_error("mdb-export fails for " + std::string(table));
    return exported.output;
}

}  // namespace quillon::support
