#include "app/journal/journal_lines.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdlib>
#include <nlohmann/json.hpp>
#include <optional>
#include <utility>

namespace quillon {
namespace {

using Json = nlohmann::ordered_json;  // members stay in the order of the line

/// The names that an enumeration's values have in a journal, in their order.
constexpr std::array<std::string_view, 3> RowKinds{"added", "changed", "removed"};
constexpr std::array<std::string_view, 11> FileKinds{
    "written",     "end written",   "copied",       "moved",          "deleted",       "discarded",
    "folder made", "folder copied", "folder moved", "folder deleted", "piece replaced"};

template <typename Kind, std::size_t Count>
std::string_view NameOf(Kind kind, const std::array<std::string_view, Count>& names) {
    return names.at(static_cast<std::size_t>(kind));
}

template <typename Kind, std::size_t Count>
Kind KindNamed(const Json& name, const std::array<std::string_view, Count>& names) {
    const auto found = std::ranges::find(names, name.get<std::string_view>());
    if (found == names.end()) throw DamagedLine("unknown change " + name.dump());
    return static_cast<Kind>(found - names.begin());
}

const Value& ValueIn(const FieldChange& field, RowChange::Kind kind) {
    return kind == RowChange::Kind::Added ? field.after : field.before;
}

/// Whether a row comes or goes whose fields are those of its key, as it has no other name.
bool IsKeyAlone(const RowChange& row) {
    if (row.kind == RowChange::Kind::Changed) return false;
    auto field = row.fields.begin();
    for (const auto& [name, value] : row.key) {
        if (IsNull(value)) continue;
        if (field == row.fields.end() || field->field != name || ValueIn(*field, row.kind) != value)
            return false;
        ++field;
    }
    return field == row.fields.end();
}

/// Writes the line of a record.
class LineWriter {
  public:
    /// Behind what `json` holds.
    explicit LineWriter(JsonText& json) : json_(json) {}

    void operator()(const RunStarted& run) {
        Begin("run");
        json_.Member("stamp", run.stamp);
        TextMember("version", run.version);
        TextMember("mode", run.mode);
        TextMember("undoes", run.undoes);
        json_.Close();
    }
    void operator()(const ModeChosen& chosen) {
        Begin("mode");
        json_.Member("mode", chosen.mode);
        json_.Close();
    }
    void operator()(const PhaseStarted& phase) {
        Begin("phase");
        json_.Member("name", phase.name);
        json_.Member("at", phase.at.count());
        json_.Close();
    }
    void operator()(const RowChange& row) {
        Begin("row");
        json_.Member("change", NameOf(row.kind, RowKinds));
        json_.Member("table", row.table);
        json_.Name("key");
        json_.Open();
        for (const auto& [field, value] : row.key)
            json_.Member(field, value);
        json_.Close();
        if (!IsKeyAlone(row)) {
            json_.Name("fields");
            json_.Open();
            for (const FieldChange& field : row.fields)
                Put(field, row.kind);
            json_.Close();
        }
        json_.Close();
    }
    void operator()(const DateReplaced& date) {
        Begin("date");
        json_.Member("table", date.table);
        json_.Member("field", date.field);
        json_.Member("before", date.before);
        json_.Member("after", date.after);
        json_.Member("rows", date.rows);
        json_.Close();
    }
    void operator()(RowsSaved) {
        Begin("saved");
        json_.Close();
    }
    void operator()(const FileChange& file) {
        Begin("file");
        json_.Member("number", file.number);
        json_.Member("change", NameOf(file.kind, FileKinds));
        json_.Member("path", file.path);
        TextMember("target", file.target);
        if (file.position != 0) json_.Member("position", file.position);
        if (file.before) ContentMember("before", *file.before);
        if (file.after) ContentMember("after", *file.after);
        TextMember("takesBack", file.takesBack);
        if (file.group != 0) json_.Member("group", file.group);
        json_.Close();
    }
    void operator()(const FileChangeFailed& failed) {
        Begin("failed");
        json_.Member("number", failed.number);
        json_.Member("reason", failed.reason);
        json_.Close();
    }
    void operator()(const LogLine& line) {
        Begin("log");
        json_.Member("error", line.isError);
        json_.Member("text", line.text);
        json_.Close();
    }
    void operator()(const WriteLeft& left) {
        Begin("left");
        json_.Member("stamp", left.stamp);
        json_.Member("number", left.number);
        json_.Close();
    }
    void operator()(const RunEnded& end) {
        Begin("end");
        json_.Member("outcome", end.outcome);
        json_.Member("status", end.status);
        json_.Member("braked", end.braked);
        json_.Member("milliseconds", end.duration.count());
        if (end.changes) json_.Member("changes", *end.changes);
        if (end.writesLeft != 0) json_.Member("writesLeft", end.writesLeft);
        json_.Close();
    }

  private:
    void Begin(std::string_view record) {
        json_.Open();
        json_.Member("record", record);
    }
    /// Left out where there is nothing to say.
    void TextMember(std::string_view name, std::string_view text) {
        if (!text.empty()) json_.Member(name, text);
    }
    void ContentMember(std::string_view name, const FileContent& content) {
        json_.Name(name);
        json_.Open();
        json_.Member("size", content.size);
        json_.Name("hash");
        json_.PutHex(content.hash);
        if (content.bytes) json_.Member("content", *content.bytes);
        TextMember("keptAs", content.keptAs);
        if (content.modified) json_.Member("modified", *content.modified);
        if (content.exactTime != 0) json_.Member("nanoseconds", content.exactTime);
        json_.Close();
    }

    /// A row that comes or goes has one value a field, and no word on those that are Null.
    void Put(const FieldChange& field, RowChange::Kind kind) {
        if (kind == RowChange::Kind::Changed) {
            json_.Name(field.field);
            json_.Open();
            json_.Member("before", field.before);
            json_.Member("after", field.after);
            return json_.Close();
        }
        const Value& value = ValueIn(field, kind);
        if (!IsNull(value)) json_.Member(field.field, value);
    }

    JsonText& json_;
};

template <typename Number>
Number FromHex(std::string_view digits) {
    Number number = 0;
    const auto [end, error] =
        std::from_chars(digits.data(), digits.data() + digits.size(), number, 16);
    if (digits.empty() || error != std::errc() || end != digits.data() + digits.size())
        throw DamagedLine("no hexadecimal number: " + std::string(digits));
    return number;
}

std::string BytesOfHex(std::string_view text) {
    if (text.size() % 2 != 0) throw DamagedLine("an odd number of hexadecimal digits");
    std::string bytes;
    bytes.reserve(text.size() / 2);
    for (std::size_t at = 0; at < text.size(); at += 2)
        bytes += static_cast<char>(FromHex<unsigned char>(text.substr(at, 2)));
    return bytes;
}

std::string TextOf(const Json& json) {
    if (json.is_object()) return BytesOfHex(json.at("bytes").get<std::string_view>());
    return json.get<std::string>();
}

std::string TextAt(const Json& json, const char* name) {
    const auto found = json.find(name);
    return found == json.end() ? "" : TextOf(*found);
}

DateTime DateOf(const Json& json) {
    return {json.at("days").get<double>()};
}

Value ValueOf(const Json& json) {
    if (json.is_null()) return Null();
    if (json.is_boolean()) return json.get<bool>();
    if (json.is_number_float()) return json.get<double>();
    if (json.is_number()) return json.get<std::int64_t>();
    if (json.contains("days")) return DateOf(json);
    if (json.contains("number")) return std::strtod(TextAt(json, "number").c_str(), nullptr);
    return TextOf(json);
}

std::optional<FileContent> ContentAt(const Json& json, const char* name) {
    const auto found = json.find(name);
    if (found == json.end()) return std::nullopt;
    FileContent content;
    content.size = found->at("size").get<std::uint64_t>();
    content.hash = FromHex<std::uint64_t>(found->at("hash").get<std::string_view>());
    if (found->contains("content")) content.bytes = TextOf(found->at("content"));
    content.keptAs = TextAt(*found, "keptAs");
    if (found->contains("modified")) content.modified = DateOf(found->at("modified"));
    content.exactTime = found->value("nanoseconds", std::int64_t{0});
    return content;
}

std::optional<std::uint64_t> CountAt(const Json& json, const char* name) {
    const auto found = json.find(name);
    return found == json.end() ? std::nullopt : std::optional(found->get<std::uint64_t>());
}

const Json& ObjectAt(const Json& json, const char* name) {
    const Json& object = json.at(name);
    if (!object.is_object()) throw DamagedLine(std::string(name) + " is no object");
    return object;
}

void TakeFieldsFromKey(RowChange& row) {
    for (const auto& [name, value] : row.key) {
        if (IsNull(value)) continue;
        FieldChange& field = row.fields.emplace_back(FieldChange{name, {}, {}});
        (row.kind == RowChange::Kind::Added ? field.after : field.before) = value;
    }
}

RowChange RowChangeOf(const Json& json) {
    RowChange row;
    row.kind = KindNamed<RowChange::Kind>(json.at("change"), RowKinds);
    row.table = TextAt(json, "table");
    const bool isChanged = row.kind == RowChange::Kind::Changed;
    for (const auto& [field, value] : ObjectAt(json, "key").items())
        row.key.emplace_back(field, ValueOf(value));
    if (!isChanged && !json.contains("fields")) {
        TakeFieldsFromKey(row);
        return row;
    }
    for (const auto& [field, value] : ObjectAt(json, "fields").items()) {
        FieldChange change{.field = field, .before = Null(), .after = Null()};
        if (isChanged) {
            change.before = ValueOf(value.at("before"));
            change.after = ValueOf(value.at("after"));
        } else {
            (row.kind == RowChange::Kind::Added ? change.after : change.before) = ValueOf(value);
        }
        row.fields.push_back(std::move(change));
    }
    return row;
}

DateReplaced DateReplacedOf(const Json& json) {
    return {.table = TextOf(json.at("table")),
            .field = TextOf(json.at("field")),
            .before = DateOf(json.at("before")),
            .after = DateOf(json.at("after")),
            .rows = json.at("rows").get<std::uint64_t>()};
}

FileChange FileChangeOf(const Json& json) {
    return {.number = json.at("number").get<std::uint64_t>(),
            .kind = KindNamed<FileChange::Kind>(json.at("change"), FileKinds),
            .path = TextOf(json.at("path")),
            .target = TextAt(json, "target"),
            .position = json.value("position", std::uint64_t{0}),
            .before = ContentAt(json, "before"),
            .after = ContentAt(json, "after"),
            .takesBack = TextAt(json, "takesBack"),
            .group = json.value("group", std::uint64_t{0})};
}

ChangeRecord RecordOf(const Json& json) {
    const auto record = json.at("record").get<std::string_view>();
    if (record == "row") return RowChangeOf(json);
    if (record == "date") return DateReplacedOf(json);
    if (record == "saved") return RowsSaved();
    if (record == "file") return FileChangeOf(json);
    if (record == "log")
        return LogLine{.isError = json.at("error").get<bool>(), .text = TextOf(json.at("text"))};
    if (record == "phase") {
        return PhaseStarted{.name = TextOf(json.at("name")),
                            .at = std::chrono::milliseconds(json.at("at").get<std::int64_t>())};
    }
    if (record == "mode") return ModeChosen{TextOf(json.at("mode"))};
    if (record == "failed") {
        return FileChangeFailed{.number = json.at("number").get<std::uint64_t>(),
                                .reason = TextOf(json.at("reason"))};
    }
    if (record == "run") {
        return RunStarted{.stamp = TextOf(json.at("stamp")),
                          .version = TextAt(json, "version"),
                          .mode = TextAt(json, "mode"),
                          .undoes = TextAt(json, "undoes")};
    }
    if (record == "left") {
        return WriteLeft{.stamp = TextOf(json.at("stamp")),
                         .number = json.at("number").get<std::uint64_t>()};
    }
    if (record == "end") {
        return RunEnded{
            .outcome = TextOf(json.at("outcome")),
            .status = json.at("status").get<int>(),
            .braked = json.at("braked").get<bool>(),
            .duration = std::chrono::milliseconds(json.at("milliseconds").get<std::int64_t>()),
            .changes = CountAt(json, "changes"),
            .writesLeft = json.value("writesLeft", std::uint64_t{0})};
    }
    throw DamagedLine("unknown record " + json.at("record").dump());
}

}  // namespace

std::string_view JournalLines::Of(const ChangeRecord& record) {
    json_.Clear();
    std::visit(LineWriter(json_), record);
    return json_.Text();
}

std::string ToLine(const ChangeRecord& record) {
    return std::string(JournalLines().Of(record));
}

ChangeRecord FromLine(std::string_view line) {
    try {
        return RecordOf(Json::parse(line));
    } catch (const Json::exception& error) {
        throw DamagedLine(error.what());
    }
}

}  // namespace quillon
