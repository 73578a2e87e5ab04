#include "jet/verify/shape.h"

#include <algorithm>
#include <set>
#include <span>

#include "jet/error.h"
#include "jet/storage/damaged.h"
#include "jet/storage/format/values.h"
#include "jet/storage/index/index_key.h"
#include "jet/verify/slots.h"

namespace jet::verify {

using storage::Load;
using storage::PageNumber;

namespace {

constexpr std::size_t PageHeader = 8;
constexpr std::size_t MostColumns = 255, MostIndexes = 128;
constexpr std::uint16_t NoColumn = 0xFFFF;

class DefinitionReader {
  public:
    explicit DefinitionReader(std::span<const std::uint8_t> bytes) : bytes_(bytes) {}

    template <typename T>
    T Next() {
        const T value = Load<T>(Take(sizeof(T)), 0);
        return value;
    }

    std::span<const std::uint8_t> Take(std::size_t size) {
        if (size > bytes_.size() - position_)
            storage::ThrowDamaged("the definition ends too early");
        position_ += size;
        return bytes_.subspan(position_ - size, size);
    }

    std::string NextName() {
        const auto size = Next<std::uint16_t>();
        const auto bytes = Take(size);
        std::u16string name(size / 2, u' ');
        for (std::size_t i = 0; i < name.size(); ++i)
            name[i] = Load<char16_t>(bytes, 2 * i);
        return storage::ToUtf8(name);
    }

    std::size_t Left() const { return bytes_.size() - position_; }

    void SkipTo(std::size_t position) {
        if (position > bytes_.size()) storage::ThrowDamaged("the definition is too short");
        position_ = position;
    }

  private:
    std::span<const std::uint8_t> bytes_;
    std::size_t position_ = 0;
};

/// The definition without the headers of its further pages.
Bytes Collect(Pages& pages, PageNumber first, const std::string& where) {
    Bytes bytes;
    if (first == 0) storage::ThrowDamaged("the catalog names no definition");
    for (PageNumber page = first; page != 0;) {
        if (!pages.Claim(page, PageUse::Definition, where))
            storage::ThrowDamaged("the definition is not whole");
        const auto content = pages.Read(page);
        if ((*content)[0] != static_cast<std::uint8_t>(storage::PageType::Definition) ||
            (*content)[1] != 1)
            storage::ThrowDamaged("page " + std::to_string(page) + " is no page of a definition");
        bytes.insert(bytes.end(), content->begin() + (bytes.empty() ? 0 : PageHeader),
                     content->end());
        page = Load<PageNumber>(*content, 4);
    }
    const auto length = Load<std::uint32_t>(bytes, 8);
    if (length > bytes.size()) storage::ThrowDamaged("the definition is longer than its pages");
    bytes.resize(length);
    return bytes;
}

Column ReadColumn(DefinitionReader& reader) {
    constexpr std::uint8_t Fixed = 0x01, AutoNumber = 0x04;
    constexpr std::uint16_t KnownOrder = 1033;
    const auto bytes = reader.Take(25);
    Column column;
    column.type = static_cast<ColumnType>(bytes[0]);
    column.number = Load<std::uint16_t>(bytes, 5);
    column.slot = Load<std::uint16_t>(bytes, 7);
    column.fixed = (bytes[15] & Fixed) != 0;
    column.offset = Load<std::uint16_t>(bytes, 21);
    column.length = Load<std::uint16_t>(bytes, 23);
    column.size = static_cast<std::uint8_t>(storage::FixedSize(column.type));
    if (column.type == ColumnType::Decimal) column.scale = bytes[12];
    column.autoNumber = column.type == ColumnType::Long && (bytes[15] & AutoNumber) != 0;
    if (column.type == ColumnType::Text || column.type == ColumnType::Memo) {
        const auto language = Load<std::uint16_t>(bytes, 11);
        column.knownOrder = (language == 0 || language == KnownOrder) && bytes[14] == 0;
    }
    return column;
}

/// Whether a column's values can have the length that its definition gives them.
bool HasPossibleLength(const Column& column) {
    constexpr std::uint16_t Longest = 510;
    switch (column.type) {
        case ColumnType::Text:
            return column.length != 0 && column.length <= Longest && column.length % 2 == 0;
        case ColumnType::Binary:
            return column.length <= Longest;
        case ColumnType::Boolean:
            return column.length == 1;
        case ColumnType::Decimal:  // Access itself has written 10 there
            return true;
        default:
            return column.size == 0 || column.size == column.length;
    }
}

/// What is written into one of two columns that share bytes changes the other.
void CheckOverlap(const Shape& shape, Findings& findings) {
    std::vector<const Column*> fixed;
    for (const Column& column : shape.columns)
        if (column.fixed && column.type != ColumnType::Boolean) fixed.push_back(&column);
    std::ranges::sort(fixed, {}, &Column::offset);
    for (std::size_t i = 1; i < fixed.size(); ++i)
        if (fixed[i - 1]->offset + fixed[i - 1]->length > fixed[i]->offset)
            findings.Fault("table " + shape.name, "columns " + fixed[i - 1]->name + " and " +
                                                      fixed[i]->name + " lie in the same place");
}

/// Names that no statement could have.
void CheckNames(const Shape& shape, Findings& findings) {
    std::vector<std::string_view> names;
    names.reserve(shape.columns.size());
    for (const Column& column : shape.columns)
        names.push_back(column.name);
    std::ranges::sort(names, [](std::string_view left, std::string_view right) {
        return storage::CompareTexts(left, right) < 0;
    });
    for (std::size_t i = 0; i < names.size(); ++i) {
        if (names[i].empty() || names[i].find('\0') != std::string_view::npos)
            findings.Fault("table " + shape.name, "a column has an impossible name");
        if (i != 0 && storage::CompareTexts(names[i - 1], names[i]) == 0)
            findings.Fault("table " + shape.name,
                           "two columns have the name " + std::string(names[i]));
    }
}

void CheckColumns(const Shape& shape, Findings& findings) {
    if (shape.columns.size() > shape.columnsEver || shape.variableEver > shape.columnsEver)
        storage::ThrowDamaged("the definition has impossible counts");
    std::set<std::uint16_t> numbers, slots;
    for (const Column& column : shape.columns) {
        if (!HasPossibleLength(column))
            findings.Fault("table " + shape.name, "column " + column.name +
                                                      " has the impossible length " +
                                                      std::to_string(column.length));
        if (column.number >= shape.columnsEver || !numbers.insert(column.number).second)
            storage::ThrowDamaged("column " + column.name + " has an impossible number");
        if (!column.fixed && column.type != ColumnType::Boolean &&
            (column.slot >= shape.variableEver || !slots.insert(column.slot).second))
            storage::ThrowDamaged("column " + column.name + " has an impossible place");
    }
    CheckNames(shape, findings);
    CheckOverlap(shape, findings);
}

/// Whether an index on the column can be built here.
bool HasKnownKeys(const Column& column) {
    if (column.type == ColumnType::Text || column.type == ColumnType::Memo)
        return column.knownOrder;
    return column.size != 0 || column.type == ColumnType::Boolean ||
           column.type == ColumnType::Binary;
}

/// Real indexes hold the entries; names come with the logical ones.
void ReadRealIndex(DefinitionReader& reader, Shape& shape) {
    constexpr std::uint8_t Unique = 0x01, IgnoresNulls = 0x02, Required = 0x08;
    constexpr std::size_t MostParts = 10;
    const auto bytes = reader.Take(52);
    Index& index = shape.indexes.emplace_back();
    index.name = "number " + std::to_string(shape.indexes.size() - 1);
    for (std::size_t part = 0; part < MostParts; ++part) {
        const auto number = Load<std::uint16_t>(bytes, 4 + 3 * part);
        if (number == NoColumn) continue;
        const Column* column = shape.FindColumn(number);
        if (column == nullptr) storage::ThrowDamaged("an index is on a column that does not exist");
        index.parts.push_back({static_cast<std::size_t>(column - shape.columns.data()),
                               (bytes[4 + 3 * part + 2] & 1) != 0});
        index.keysAreKnown = index.keysAreKnown && HasKnownKeys(*column);
    }
    if (index.parts.empty()) storage::ThrowDamaged("an index has no columns");
    index.map = RowPointer(bytes, 34);
    index.root = Load<PageNumber>(bytes, 38);
    const std::uint8_t flags = bytes[46];
    index.unique = (flags & Unique) != 0;
    index.ignoresNulls = (flags & IgnoresNulls) != 0;
    index.required = (flags & Required) != 0;
}

void ReadIndexNames(DefinitionReader& reader, Shape& shape, std::size_t logical,
                    Findings& findings) {
    std::vector<std::uint32_t> real;
    for (std::size_t i = 0; i < logical; ++i) {
        const auto bytes = reader.Take(28);
        real.push_back(Load<std::uint32_t>(bytes, 8));
        if (real.back() >= shape.indexes.size())
            storage::ThrowDamaged("an index name stands for no index");
    }
    std::vector<bool> named(shape.indexes.size());
    for (const std::uint32_t index : real) {
        const std::string name = reader.NextName();
        if (!named[index]) shape.indexes[index].name = name;
        named[index] = true;
    }
    if (std::ranges::find(named, false) != named.end())
        findings.Fault("table " + shape.name, "an index has no name");
}

void ReadLongMaps(DefinitionReader& reader, Shape& shape) {
    while (true) {
        LongColumnMaps maps;
        maps.column = reader.Next<std::uint16_t>();
        if (maps.column == NoColumn) return;
        const auto pointers = reader.Take(8);
        if (Load<std::uint32_t>(pointers, 0) != 0) maps.owned = RowPointer(pointers, 0);
        if (Load<std::uint32_t>(pointers, 4) != 0) maps.free = RowPointer(pointers, 4);
        shape.longMaps.push_back(maps);
    }
}

void ReadParts(std::span<const std::uint8_t> bytes, Shape& shape, Findings& findings) {
    constexpr std::size_t FixedPart = 0x3F, StatisticsSize = 12;
    DefinitionReader reader(bytes);
    reader.SkipTo(FixedPart);
    shape.rows = Load<std::uint32_t>(bytes, 0x10);
    shape.lastAutoNumber = Load<std::int32_t>(bytes, 0x14);
    shape.columnsEver = Load<std::uint16_t>(bytes, 0x29);
    shape.variableEver = Load<std::uint16_t>(bytes, 0x2B);
    const auto columns = Load<std::uint16_t>(bytes, 0x2D);
    const auto logical = Load<std::uint32_t>(bytes, 0x2F);
    const auto indexes = Load<std::uint32_t>(bytes, 0x33);
    shape.owned = RowPointer(bytes, 0x37);
    shape.free = RowPointer(bytes, 0x3B);
    if (columns > MostColumns || logical > MostIndexes || indexes > MostIndexes)
        storage::ThrowDamaged("the definition has impossible counts");
    reader.Take(indexes * StatisticsSize);
    for (std::size_t i = 0; i < columns; ++i)
        shape.columns.push_back(ReadColumn(reader));
    for (Column& column : shape.columns)
        column.name = reader.NextName();
    CheckColumns(shape, findings);
    for (std::size_t i = 0; i < indexes; ++i)
        ReadRealIndex(reader, shape);
    ReadIndexNames(reader, shape, logical, findings);
    ReadLongMaps(reader, shape);
    if (reader.Left() != 0)
        findings.Fault("table " + shape.name, "the definition is longer than what it defines");
}

}  // namespace

const Column* Shape::FindColumn(std::uint16_t number) const {
    const auto found = std::ranges::find(columns, number, &Column::number);
    return found == columns.end() ? nullptr : &*found;
}

const Column* Shape::FindColumn(std::string_view columnName) const {
    const auto found = std::ranges::find(columns, columnName, &Column::name);
    return found == columns.end() ? nullptr : &*found;
}

std::optional<Shape> ReadShape(Pages& pages, Findings& findings, PageNumber page,
                               const std::string& name) {
    std::optional<Shape> shape(std::in_place);
    shape->name = name;
    shape->page = page;
    const std::string where = "table " + name;
    try {
        ReadParts(Collect(pages, page, where), *shape, findings);
    } catch (const Error& error) {
        if (error.Kind() != ErrorKind::Damaged) throw;
        findings.Fault(where, error.what());
        shape.reset();
    }
    return shape;
}

}  // namespace jet::verify
