#include "tests/jet/storage/index/samples.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <sstream>
#include <stdexcept>
#include <string_view>

#include "tests/jet/storage/index/json.h"
#include "tests/outside/command.h"
#include "tests/outside/temporary_folder.h"

namespace jet::test {

namespace {

std::string ReadCompressed(const std::filesystem::path& path) {
    return outside::RunCommand("gzip -dc " + outside::ShellQuoted(path.string())).output;
}

unsigned HexDigit(char digit) {
    return static_cast<unsigned>(digit <= '9' ? digit - '0' : (digit | 0x20) - 'a' + 10);
}

Bytes FromHex(std::string_view digits) {
    Bytes bytes;
    for (std::size_t i = 0; i + 1 < digits.size(); i += 2)
        bytes.push_back(
            static_cast<std::uint8_t>(HexDigit(digits[i]) << 4 | HexDigit(digits[i + 1])));
    return bytes;
}

/// The digits of a decimal text as a 128-bit number.
Decimal ParseDecimal(const std::string& text, std::uint8_t scale) {
    Decimal decimal{.negative = text.starts_with('-'), .scale = scale};
    for (const char digit : text) {
        if (digit < '0' || digit > '9') continue;
        std::uint64_t carry = static_cast<std::uint64_t>(digit - '0');
        for (std::size_t word = 4; word-- > 0;) {
            carry += std::uint64_t{decimal.magnitude[word]} * 10;
            decimal.magnitude[word] = static_cast<std::uint32_t>(carry);
            carry >>= 32;
        }
    }
    return decimal;
}

std::int64_t DaysFromCivil(int year, int month, int day) {
    year -= month <= 2 ? 1 : 0;
    const int era = (year >= 0 ? year : year - 399) / 400;
    const int yearOfEra = year - era * 400;
    const int dayOfYear = (153 * (month + (month > 2 ? -3 : 9)) + 2) / 5 + day - 1;
    const int dayOfEra = yearOfEra * 365 + yearOfEra / 4 - yearOfEra / 100 + dayOfYear;
    constexpr std::int64_t FirstDay = 693899;  // 30 December 1899 in this count
    return std::int64_t{era} * 146097 + dayOfEra - FirstDay;
}

Date ParseDate(const std::string& text) {
    int year = 0, month = 0, day = 0, hour = 0, minute = 0;
    double second = 0;
    // NOLINTNEXTLINE(cert-err34-c): a text that does not fit gives a date that no key has
    (void)std::sscanf(text.c_str(), "%d-%d-%dT%d:%d:%lf", &year, &month, &day, &hour, &minute,
                      &second);
    const auto days = static_cast<double>(DaysFromCivil(year, month, day));
    const double time = (hour * 3600 + minute * 60 + second) / 86400;
    return Date{days < 0 ? days - time : days + time};
}

Guid ParseGuid(const std::string& text) {
    std::string digits;
    std::ranges::copy_if(text, std::back_inserter(digits),
                         [](char c) { return c != '-' && c != '{' && c != '}'; });
    Guid guid;
    std::ranges::copy(FromHex(digits), guid.bytes.begin());
    return guid;
}

Value ParseValue(const Json& json, const SampleColumn& column) {
    if (json.IsNull()) return Null{};
    switch (column.type) {
        case ColumnType::Boolean:
            return json.Flag();
        case ColumnType::Byte:
        case ColumnType::Integer:
        case ColumnType::Long:
            return static_cast<std::int64_t>(json.Number());
        case ColumnType::Single:
        case ColumnType::Double:
            return json.Number();
        case ColumnType::Currency: {
            const Decimal decimal = ParseDecimal(json.Text(), 4);
            const auto magnitude = static_cast<std::int64_t>(
                (std::uint64_t{decimal.magnitude[2]} << 32) | decimal.magnitude[3]);
            return Currency{decimal.negative ? -magnitude : magnitude};
        }
        case ColumnType::Decimal:
            return ParseDecimal(json.Text(), column.scale);
        case ColumnType::Date:
            return ParseDate(json.Text());
        case ColumnType::Guid:
            return ParseGuid(json.Text());
        case ColumnType::Text:
        case ColumnType::Memo:
            return json.Text();
        case ColumnType::Binary:
        case ColumnType::Ole:
            break;
    }
    throw std::runtime_error("no sample has an index on such a column");
}

std::vector<SampleIndex> ReadIndexes(const std::filesystem::path& schema) {
    std::vector<SampleIndex> indexes;
    const Json content = Json::Parse(outside::ContentOf(schema));
    for (const Json& table : content["tables"].Items()) {
        for (const Json& index : table["indexes"].Items()) {
            SampleIndex& added = indexes.emplace_back();
            added.table = table["name"].Text();
            added.name = index["name"].Text();
            added.definition = static_cast<storage::PageNumber>(table["tdefPage"].Number());
            added.root = static_cast<storage::PageNumber>(index["rootPage"].Number());
            for (const Json& part : index["columns"].Items()) {
                const auto& columns = table["columns"].Items();
                const auto column = std::ranges::find_if(columns, [&part](const Json& candidate) {
                    return candidate["name"].Text() == part["name"].Text();
                });
                added.columns.push_back(
                    {.type = static_cast<ColumnType>((*column)["code"].Number()),
                     .scale = static_cast<std::uint8_t>(
                         column->Has("scale") ? (*column)["scale"].Number() : 0),
                     .ascending = part["ascending"].Flag()});
            }
        }
    }
    return indexes;
}

}  // namespace

std::string SampleName(const std::filesystem::path& database) {
    std::string name = database.stem().string();
    std::ranges::replace(name, '-', '_');
    return name;
}

const SampleIndex& SampleIndexes::Find(const SampleEntry& entry) const {
    // Names that share their entries are listed as "[one, other]".
    const std::string_view listed = entry.index;
    const std::string_view name =
        listed.starts_with('[') ? listed.substr(1, listed.find(',') - 1) : listed;
    const auto found = std::ranges::find_if(indexes, [&](const SampleIndex& index) {
        return index.table == entry.table && index.name == name;
    });
    if (found == indexes.end()) throw std::runtime_error("no index " + entry.index);
    return *found;
}

SampleIndexes ReadSampleIndexes(const std::filesystem::path& database) {
    const auto companion = [&database](const char* extension) {
        return std::filesystem::path(database).replace_extension(extension);
    };
    SampleIndexes samples;
    samples.indexes = ReadIndexes(companion(".schema.json"));
    std::istringstream lines(ReadCompressed(companion(".keys.jsonl.gz")));
    for (std::string line; std::getline(lines, line);) {
        const Json content = Json::Parse(line);
        SampleEntry entry;
        entry.table = content["table"].Text();
        entry.index = content["index"].Text();
        entry.key = FromHex(content["key"].Text());
        entry.row.page = static_cast<storage::PageNumber>(content["page"].Number());
        entry.row.slot = static_cast<std::uint8_t>(content["slot"].Number());
        const SampleIndex& index = samples.Find(entry);
        const auto& values = content["values"].Items();
        for (std::size_t i = 0; i < values.size(); ++i)
            entry.values.push_back(ParseValue(values[i], index.columns.at(i)));
        samples.entries.push_back(std::move(entry));
    }
    return samples;
}

}  // namespace jet::test
