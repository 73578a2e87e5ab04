#include "app/journal/journal_lines.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstdlib>
#include <nlohmann/json.hpp>
#include <optional>

#include "platform/failure.h"
#include "platform/utf8.h"

namespace quillon {
namespace {

using Json = nlohmann::ordered_json;

/// The names that an enumeration's values have in a journal, in their order.
constexpr std::array<std::string_view, 3> RowKinds{"added", "changed", "removed"};
constexpr std::array<std::string_view, 10> FileKinds{
    "written",   "end written", "copied",        "moved",        "deleted",
    "discarded", "folder made", "folder copied", "folder moved", "folder deleted"};

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

bool IsWellFormed(std::string_view text) {
    for (std::size_t at = 0; at < text.size();) {
        const Utf8Character character = DecodeUtf8(text, at);
        if (!character.wellFormed) return false;
        at += character.length;
    }
    return true;
}

std::string HexText(std::string_view bytes) {
    constexpr std::string_view Digits = "0123456789abcdef";
    std::string text;
    text.reserve(bytes.size() * 2);
    for (const char byte : bytes) {
        const auto value = static_cast<unsigned char>(byte);
        text += Digits[value >> 4];
        text += Digits[value & 15];
    }
    return text;
}

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

/// Text as such where JSON can hold it; all else by its bytes.
Json TextJson(std::string_view text) {
    if (IsWellFormed(text)) return text;
    return {{"bytes", HexText(text)}};
}

std::string TextOf(const Json& json) {
    if (json.is_object()) return BytesOfHex(json.at("bytes").get<std::string_view>());
    return json.get<std::string>();
}

std::string TextAt(const Json& json, const char* name) {
    const auto found = json.find(name);
    return found == json.end() ? "" : TextOf(*found);
}

void PutText(Json& json, const char* name, std::string_view text) {
    if (!text.empty()) json[name] = TextJson(text);
}

/// The readable form is for people only; the days are exact.
Json DateJson(DateTime time) {
    Json json;
    try {
        json["date"] = SortableDateTimeText(time);
    } catch (const Failure&) {
        json["date"] = nullptr;  // outside the years that have a text
    }
    json["days"] = time.days;
    return json;
}

DateTime DateOf(const Json& json) {
    return {json.at("days").get<double>()};
}

struct ValueJson {
    Json operator()(Null) const { return nullptr; }
    Json operator()(bool value) const { return value; }
    Json operator()(std::int64_t value) const { return value; }
    Json operator()(double value) const {
        if (std::isfinite(value)) return value;
        return {{"number", std::isnan(value) ? "nan" : value > 0 ? "inf" : "-inf"}};
    }
    Json operator()(DateTime value) const { return DateJson(value); }
    Json operator()(const std::string& value) const { return TextJson(value); }
};

Json ToJson(const Value& value) {
    return std::visit(ValueJson(), value);
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

Json ToJson(const FileContent& content) {
    Json json{{"size", content.size}};
    std::array<char, 16> digits{};
    const auto [end, ignored] =
        std::to_chars(digits.data(), digits.data() + digits.size(), content.hash, 16);
    json["hash"] = std::string_view(digits.data(), end);
    if (content.bytes) json["content"] = TextJson(*content.bytes);
    PutText(json, "keptAs", content.keptAs);
    if (content.modified) json["modified"] = DateJson(*content.modified);
    return json;
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
    return content;
}

struct RecordJson {
    Json operator()(const RunStarted& run) const {
        Json json{{"record", "run"}, {"stamp", TextJson(run.stamp)}};
        PutText(json, "version", run.version);
        PutText(json, "mode", run.mode);
        PutText(json, "undoes", run.undoes);
        return json;
    }
    Json operator()(const ModeChosen& chosen) const {
        return {{"record", "mode"}, {"mode", TextJson(chosen.mode)}};
    }
    Json operator()(const PhaseStarted& phase) const {
        return {{"record", "phase"}, {"name", TextJson(phase.name)}, {"at", phase.at.count()}};
    }
    Json operator()(const RowChange& row) const {
        Json json{{"record", "row"},
                  {"change", NameOf(row.kind, RowKinds)},
                  {"table", TextJson(row.table)}};
        Json& key = json["key"] = Json::object();
        for (const auto& [field, value] : row.key)
            key[field] = ToJson(value);
        Json& fields = json["fields"] = Json::object();
        for (const FieldChange& field : row.fields) {
            Json& change = fields[field.field] = Json::object();
            if (row.kind != RowChange::Kind::Added) change["before"] = ToJson(field.before);
            if (row.kind != RowChange::Kind::Removed) change["after"] = ToJson(field.after);
        }
        return json;
    }
    Json operator()(RowsSaved) const { return {{"record", "saved"}}; }
    Json operator()(const FileChange& file) const {
        Json json{{"record", "file"},
                  {"number", file.number},
                  {"change", NameOf(file.kind, FileKinds)},
                  {"path", TextJson(file.path)}};
        PutText(json, "target", file.target);
        if (file.position != 0) json["position"] = file.position;
        if (file.before) json["before"] = ToJson(*file.before);
        if (file.after) json["after"] = ToJson(*file.after);
        PutText(json, "takesBack", file.takesBack);
        return json;
    }
    Json operator()(const FileChangeFailed& failed) const {
        return {
            {"record", "failed"}, {"number", failed.number}, {"reason", TextJson(failed.reason)}};
    }
    Json operator()(const LogLine& line) const {
        return {{"record", "log"}, {"error", line.isError}, {"text", TextJson(line.text)}};
    }
    Json operator()(const RunEnded& end) const {
        return {{"record", "end"},
                {"outcome", TextJson(end.outcome)},
                {"status", end.status},
                {"braked", end.braked},
                {"milliseconds", end.duration.count()}};
    }
};

RowChange RowChangeOf(const Json& json) {
    RowChange row;
    row.kind = KindNamed<RowChange::Kind>(json.at("change"), RowKinds);
    row.table = TextAt(json, "table");
    for (const auto& [field, value] : json.at("key").items())
        row.key.emplace_back(field, ValueOf(value));
    for (const auto& [field, change] : json.at("fields").items()) {
        row.fields.push_back({.field = field,
                              .before = ValueOf(change.value("before", Json())),
                              .after = ValueOf(change.value("after", Json()))});
    }
    return row;
}

FileChange FileChangeOf(const Json& json) {
    return {.number = json.at("number").get<std::uint64_t>(),
            .kind = KindNamed<FileChange::Kind>(json.at("change"), FileKinds),
            .path = TextOf(json.at("path")),
            .target = TextAt(json, "target"),
            .position = json.value("position", std::uint64_t{0}),
            .before = ContentAt(json, "before"),
            .after = ContentAt(json, "after"),
            .takesBack = TextAt(json, "takesBack")};
}

ChangeRecord RecordOf(const Json& json) {
    const auto record = json.at("record").get<std::string_view>();
    if (record == "row") return RowChangeOf(json);
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
    if (record == "end") {
        return RunEnded{
            .outcome = TextOf(json.at("outcome")),
            .status = json.at("status").get<int>(),
            .braked = json.at("braked").get<bool>(),
            .duration = std::chrono::milliseconds(json.at("milliseconds").get<std::int64_t>())};
    }
    throw DamagedLine("unknown record " + json.at("record").dump());
}

}  // namespace

std::string ToLine(const ChangeRecord& record) {
    return std::visit(RecordJson(), record).dump();
}

ChangeRecord FromLine(std::string_view line) {
    try {
        return RecordOf(Json::parse(line));
    } catch (const Json::exception& error) {
        throw DamagedLine(error.what());
    }
}

}  // namespace quillon
