#include "tests/support/database_rows.h"

#include <array>
#include <cstdlib>
#include <memory>
#include <stdexcept>
#include <stdio.h>  // popen is POSIX, not in <cstdio>
#include <utility>
#include <variant>

#include "platform/date_time.h"

namespace quillon::support {
namespace {

namespace fs = std::filesystem;

/// Runs a shell command; its output and its exit status.
std::pair<std::string, int> Output(const std::string& command) {
    std::unique_ptr<FILE, int (*)(FILE*)> pipe(::popen(command.c_str(), "r"), ::pclose);
    if (!pipe) throw std::runtime_error("cannot run: " + command);
    std::string output;
    std::array<char, 4096> buffer{};
    while (const std::size_t count = std::fread(buffer.data(), 1, buffer.size(), pipe.get()))
        output.append(buffer.data(), count);
    return {output, ::pclose(pipe.release())};
}

fs::path SharedFolder() {
    const char* const given = std::getenv("QUILLON_SHARED");
    return given != nullptr ? given : QUILLON_SHARED_DEFAULT;
}

std::string ShellQuoted(const std::string& text) {
    return "'" + text + "'";
}

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
    const fs::path checker = SharedFolder() / "mdb" / "mdbcheck";
    if (!fs::exists(checker)) return "";
    const auto [output, status] =
        Output(ShellQuoted(checker) + " --strict " + ShellQuoted(database) + " 2>&1");
    return status == 0 ? "" : output;
}

std::string ExportedTable(const fs::path& database, std::string_view table) {
    const auto [output, status] =
        Output("mdb-export " + ShellQuoted(database) + " " + ShellQuoted(std::string(table)));
    if (status != 0) throw std::runtime_error("mdb-export fails for " + std::string(table));
    return output;
}

}  // namespace quillon::support
