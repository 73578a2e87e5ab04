#include "jet/storage/properties.h"

#include <algorithm>
#include <string_view>

#include "jet/storage/bytes.h"
#include "jet/storage/format/values.h"

namespace jet::storage {

namespace {

constexpr std::string_view Magic("MR2\0", 4);
constexpr std::uint16_t NamesChunk = 0x80, ColumnChunk = 0x01;
constexpr std::size_t ChunkHeader = 6, EntryHeader = 8;
constexpr std::string_view Required = "Required", AllowZeroLength = "AllowZeroLength";

std::string TextOf(std::span<const std::uint8_t> bytes) {
    std::u16string units(bytes.size() / 2, u'\0');
    for (std::size_t i = 0; i < units.size(); ++i)
        units[i] = Load<char16_t>(bytes, i * 2);
    return ToUtf8(units);
}

void AppendText(Bytes& bytes, std::string_view text) {
    const std::u16string units = ToUtf16(text);
    Append(bytes, static_cast<std::uint16_t>(units.size() * 2));
    for (const char16_t unit : units)
        Append(bytes, unit);
}

void AppendChunk(Bytes& bytes, std::uint16_t type, const Bytes& content) {
    Append(bytes, static_cast<std::uint32_t>(content.size() + ChunkHeader));
    Append(bytes, type);
    Append(bytes, std::span(content));
}

/// Reads a column's block; whether it says that the column needs a value.
bool ReadsRequired(ByteReader& block, const std::vector<std::string>& names) {
    bool required = false;
    while (block.Left() >= EntryHeader) {
        const auto length = block.Next<std::uint16_t>();
        block.Skip(2);
        const auto name = block.Next<std::uint16_t>();
        const auto value = block.Take(block.Next<std::uint16_t>());
        if (length > EntryHeader + value.size()) block.Skip(length - EntryHeader - value.size());
        if (name < names.size() && names[name] == Required)
            required = !value.empty() && value[0] != 0;
    }
    return required;
}

void AppendTrue(Bytes& block, std::uint16_t name) {
    Append(block, static_cast<std::uint16_t>(EntryHeader + 1));
    Append(block, std::uint8_t{0});
    Append(block, static_cast<std::uint8_t>(ColumnType::Boolean));
    Append(block, name);
    Append(block, std::uint16_t{1});
    Append(block, std::uint8_t{0xFF});
}

}  // namespace

std::vector<std::string> RequiredColumns(std::span<const std::uint8_t> properties) {
    std::vector<std::string> columns;
    if (!std::equal(Magic.begin(), Magic.end(), properties.begin(),
                    properties.begin() +
                        static_cast<std::ptrdiff_t>(std::min(Magic.size(), properties.size())))) {
        return columns;
    }
    const std::string what = "a list of field properties";
    std::vector<std::string> names;
    ByteReader reader(properties.subspan(Magic.size()), what);
    while (reader.Left() >= ChunkHeader) {
        const auto length = reader.Next<std::uint32_t>();
        const auto type = reader.Next<std::uint16_t>();
        if (length < ChunkHeader) ThrowDamaged(what + " has an impossible length");
        ByteReader chunk(reader.Take(length - ChunkHeader), what);
        if (type == NamesChunk) {
            while (chunk.Left() >= 2)
                names.push_back(TextOf(chunk.Take(chunk.Next<std::uint16_t>())));
        } else if (type == ColumnChunk) {
            const auto headerLength = chunk.Next<std::uint32_t>();
            std::string column = TextOf(chunk.Take(chunk.Next<std::uint16_t>()));
            if (headerLength > chunk.Offset()) chunk.Skip(headerLength - chunk.Offset());
            if (ReadsRequired(chunk, names)) columns.push_back(std::move(column));
        }
    }
    return columns;
}

Bytes PropertiesOf(const TableDefinition& table) {
    constexpr std::uint16_t RequiredName = 0, AllowZeroLengthName = 1;
    Bytes properties(Magic.begin(), Magic.end());
    Bytes names;
    AppendText(names, Required);
    AppendText(names, AllowZeroLength);
    AppendChunk(properties, NamesChunk, names);
    for (const ColumnDefinition& column : table.columns) {
        Bytes entries;
        if (column.required) AppendTrue(entries, RequiredName);
        if (column.type == ColumnType::Text || column.type == ColumnType::Memo) {
            AppendTrue(entries, AllowZeroLengthName);
        }
        if (entries.empty()) continue;
        Bytes name;
        AppendText(name, column.name);
        Bytes block;
        Append(block, static_cast<std::uint32_t>(name.size() + sizeof(std::uint32_t)));
        Append(block, std::span(name));
        Append(block, std::span(entries));
        AppendChunk(properties, ColumnChunk, block);
    }
    return properties;
}

}  // namespace jet::storage
