#include "app/journal/journal_lines.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <concepts>
#include <cstdlib>
#include <nlohmann/json.hpp>
#include <optional>
#include <utility>

#include "platform/failure.h"
#include "platform/utf8.h"

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

bool IsWellFormed(std::string_view text) {
    for (std::size_t at = 0; at < text.size();) {
        const Utf8Character character = DecodeUtf8(text, at);
        if (!character.wellFormed) return false;
        at += character.length;
    }
    return true;
}

/// What a JSON string can hold as it stands.
bool IsPlain(char byte) {
    const auto code = static_cast<unsigned char>(byte);
    return code >= 0x20 && code < 0x80 && byte != '"' && byte != '\\';
}

/// "" outside the years that have a text.
std::string ReadableDate(DateTime time) {
    try {
        return SortableDateTimeText(time);
    } catch (const Failure&) {
        return "";
    }
}

/// Writes one line straight into a text: a first run has some hundred thousand of them.
class LineWriter {
  public:
    explicit LineWriter(std::string& line) : line_(line) {}

    void operator()(const RunStarted& run) {
        Begin("run");
        Member("stamp", run.stamp);
        TextMember("version", run.version);
        TextMember("mode", run.mode);
        TextMember("undoes", run.undoes);
        End();
    }
    void operator()(const ModeChosen& chosen) {
        Begin("mode");
        Member("mode", chosen.mode);
        End();
    }
    void operator()(const PhaseStarted& phase) {
        Begin("phase");
        Member("name", phase.name);
        Member("at", phase.at.count());
        End();
    }
    void operator()(const RowChange& row) {
        Begin("row");
        Member("change", NameOf(row.kind, RowKinds));
        Member("table", row.table);
        Name("key");
        Open();
        for (const auto& [field, value] : row.key)
            Member(field, value);
        End();
        Name("fields");
        Open();
        for (const FieldChange& field : row.fields)
            Put(field, row.kind);
        End();
        End();
    }
    void operator()(RowsSaved) {
        Begin("saved");
        End();
    }
    void operator()(const FileChange& file) {
        Begin("file");
        Member("number", file.number);
        Member("change", NameOf(file.kind, FileKinds));
        Member("path", file.path);
        TextMember("target", file.target);
        if (file.position != 0) Member("position", file.position);
        if (file.before) Member("before", *file.before);
        if (file.after) Member("after", *file.after);
        TextMember("takesBack", file.takesBack);
        End();
    }
    void operator()(const FileChangeFailed& failed) {
        Begin("failed");
        Member("number", failed.number);
        Member("reason", failed.reason);
        End();
    }
    void operator()(const LogLine& line) {
        Begin("log");
        Member("error", line.isError);
        Member("text", line.text);
        End();
    }
    void operator()(const RunEnded& end) {
        Begin("end");
        Member("outcome", end.outcome);
        Member("status", end.status);
        Member("braked", end.braked);
        Member("milliseconds", end.duration.count());
        End();
    }

  private:
    void Begin(std::string_view record) {
        Open();
        Member("record", record);
    }
    void Open() {
        line_ += '{';
        isFirst_ = true;
    }
    void End() {
        line_ += '}';
        isFirst_ = false;
    }
    void Name(std::string_view name) {
        if (!isFirst_) line_ += ',';
        isFirst_ = false;
        Put(name);
        line_ += ':';
    }
    template <typename Content>
    void Member(std::string_view name, const Content& content) {
        Name(name);
        Put(content);
    }
    /// Left out where there is nothing to say.
    void TextMember(std::string_view name, std::string_view text) {
        if (!text.empty()) Member(name, text);
    }

    void Put(Null) { line_ += "null"; }
    void Put(bool value) { line_ += value ? "true" : "false"; }
    template <std::integral Number>
    void Put(Number value) {
        PutNumber(value);
    }
    /// Always with a mark of fractions, so that it comes back as what it was.
    void Put(double value) {
        if (!std::isfinite(value)) {
            Open();
            Member("number", std::string_view(std::isnan(value) ? "nan"
                                              : value > 0       ? "inf"
                                                                : "-inf"));
            return End();
        }
        const std::size_t start = line_.size();
        PutNumber(value);
        if (line_.find_first_of(".e", start) == std::string::npos) line_ += ".0";
    }
    /// The readable form is for people only; the days are exact.
    void Put(DateTime time) {
        Open();
        TextMember("date", ReadableDate(time));
        Member("days", time.days);
        End();
    }
    void Put(const std::string& text) { Put(std::string_view(text)); }
    /// Text as such where JSON can hold it; all else by its bytes.
    void Put(std::string_view text) {
        if (std::ranges::all_of(text, IsPlain)) {
            line_.append(1, '"').append(text) += '"';
        } else if (IsWellFormed(text)) {
            PutEscaped(text);
        } else {
            Open();
            Name("bytes");
            line_ += '"';
            for (const char byte : text)
                PutHex(static_cast<unsigned char>(byte));
            line_ += '"';
            End();
        }
    }
    void Put(const Value& value) {
        std::visit([this](const auto& content) { Put(content); }, value);
    }
    void Put(const FileContent& content) {
        Open();
        Member("size", content.size);
        Name("hash");
        line_ += '"';
        PutNumber(content.hash, 16);
        line_ += '"';
        if (content.bytes) Member("content", *content.bytes);
        TextMember("keptAs", content.keptAs);
        if (content.modified) Member("modified", *content.modified);
        End();
    }

    /// A row that comes or goes has one value a field, and no word on those that are Null.
    void Put(const FieldChange& field, RowChange::Kind kind) {
        if (kind == RowChange::Kind::Changed) {
            Name(field.field);
            Open();
            Member("before", field.before);
            Member("after", field.after);
            return End();
        }
        const Value& value = kind == RowChange::Kind::Added ? field.after : field.before;
        if (!IsNull(value)) Member(field.field, value);
    }

    template <typename Number, typename... Base>
    void PutNumber(Number value, Base... base) {
        std::array<char, 32> digits{};
        const auto [end, ignored] =
            std::to_chars(digits.data(), digits.data() + digits.size(), value, base...);
        line_.append(digits.data(), end);
    }
    void PutEscaped(std::string_view text) {
        line_ += '"';
        for (const char byte : text) {
            if (byte == '"' || byte == '\\') {
                line_.append(1, '\\') += byte;
            } else if (static_cast<unsigned char>(byte) < 0x20) {
                line_ += "\\u00";
                PutHex(static_cast<unsigned char>(byte));
            } else {
                line_ += byte;
            }
        }
        line_ += '"';
    }
    void PutHex(unsigned char byte) {
        constexpr std::string_view Digits = "0123456789abcdef";
        line_ += Digits[byte >> 4];
        line_ += Digits[byte & 15];
    }

    std::string& line_;
    bool isFirst_ = true;
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
    return content;
}

const Json& ObjectAt(const Json& json, const char* name) {
    const Json& object = json.at(name);
    if (!object.is_object()) throw DamagedLine(std::string(name) + " is no object");
    return object;
}

RowChange RowChangeOf(const Json& json) {
    RowChange row;
    row.kind = KindNamed<RowChange::Kind>(json.at("change"), RowKinds);
    row.table = TextAt(json, "table");
    for (const auto& [field, value] : ObjectAt(json, "key").items())
        row.key.emplace_back(field, ValueOf(value));
    for (const auto& [field, value] : ObjectAt(json, "fields").items()) {
        FieldChange change{.field = field, .before = Null(), .after = Null()};
        if (row.kind == RowChange::Kind::Changed) {
            change.before = ValueOf(value.at("before"));
            change.after = ValueOf(value.at("after"));
        } else {
            (row.kind == RowChange::Kind::Added ? change.after : change.before) = ValueOf(value);
        }
        row.fields.push_back(std::move(change));
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

void AppendLine(std::string& lines, const ChangeRecord& record) {
    std::visit(LineWriter(lines), record);
}

std::string ToLine(const ChangeRecord& record) {
    std::string line;
    AppendLine(line, record);
    return line;
}

ChangeRecord FromLine(std::string_view line) {
    try {
        return RecordOf(Json::parse(line));
    } catch (const Json::exception& error) {
        throw DamagedLine(error.what());
    }
}

}  // namespace quillon
