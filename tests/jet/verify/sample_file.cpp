#include "tests/jet/verify/sample_file.h"

#include <fstream>
#include <stdexcept>

#include "jet/storage/database_file.h"

namespace jet::test {

using storage::PageNumber;
using storage::PageType;

void MakeSample(const std::filesystem::path& path) {
    const ColumnDefinition id{.name = "ID", .type = ColumnType::Long, .autoNumber = true};
    const ColumnDefinition title{.name = "Title", .type = ColumnType::Text, .size = 200};
    const ColumnDefinition year{.name = "Year", .type = ColumnType::Integer};
    const ColumnDefinition notes{.name = "Notes", .type = ColumnType::Memo};
    const ColumnDefinition mine{.name = "Mine", .type = ColumnType::Boolean};
    const IndexDefinition key{.name = "PrimaryKey", .columns = {{0, true}}, .primary = true};
    const IndexDefinition byTitle{.name = "Title", .columns = {{1, true}}};
    const IndexDefinition byYear{.name = "Year", .columns = {{2, false}}};
    storage::DatabaseFile::Create(
        path, std::vector{TableDefinition{.name = "Songs",
                                          .columns = {id, title, year, notes, mine},
                                          .indexes = {key, byTitle, byYear}}});
    auto file = storage::DatabaseFile::Open(path, OpenMode::ReadWrite);
    storage::Table& table = file.OpenTable("Songs");
    std::vector<storage::RowId> rows;
    for (int i = 0; i < 400; ++i) {
        const std::size_t length = i % 100 == 7 ? 9000 : (i % 20 == 3 ? 500 : 10);
        const Value note = i % 3 == 0 ? Value{Null{}} : Value{std::string(length, 'n')};
        const Value when = i % 10 == 0 ? Value{Null{}} : Value{std::int64_t{1950 + i % 60}};
        rows.push_back(table
                           .Insert(std::vector<Value>{Null{}, "Song number " + std::to_string(i),
                                                      when, note, i % 2 == 0})
                           .row);
    }
    for (std::size_t i = 0; i < rows.size(); i += 50)
        table.Update(rows[i], std::vector{storage::FieldChange{.column = 1,
                                                               .value = std::string(190, 's')}});
    for (std::size_t i = 1; i < rows.size(); i += 40)
        table.Delete(rows[i]);
    file.Commit();
}

SampleBytes::SampleBytes(const std::filesystem::path& path) {
    const std::string content = outside::ContentOf(path);
    bytes_.assign(content.begin(), content.end());
}

void SampleBytes::Save(const std::filesystem::path& path) const {
    std::ofstream stream(path, std::ios::binary);
    stream.write(reinterpret_cast<const char*>(bytes_.data()),
                 static_cast<std::streamsize>(bytes_.size()));
}

std::uint8_t& SampleBytes::At(PageNumber page, std::size_t offset) {
    return bytes_.at(page * storage::PageSize + offset);
}

std::vector<PageNumber> SampleBytes::Pages(PageType type, std::uint32_t owner) {
    std::vector<PageNumber> found;
    for (PageNumber page = 1; page < PageCount(); ++page)
        if (At(page, 0) == static_cast<std::uint8_t>(type) && Get<std::uint32_t>(page, 4) == owner)
            found.push_back(page);
    return found;
}

PageNumber SampleBytes::Definition() {
    constexpr PageNumber LastSystemTable = 5;
    for (const PageNumber page : Pages(PageType::Definition, 0))
        if (page > LastSystemTable) return page;
    throw std::runtime_error("no table");
}

std::vector<PageNumber> SampleBytes::DataPages() {
    return Pages(PageType::Data, Definition());
}

std::vector<PageNumber> SampleBytes::IndexPages(PageType type) {
    return Pages(type, Definition());
}

std::vector<PageNumber> SampleBytes::LongPages() {
    return Pages(PageType::Data, 0x4C41564C);
}

std::size_t SampleBytes::ColumnOffset(std::size_t column) {
    return 0x3F + 12 * Get<std::uint32_t>(Definition(), 0x33) + 25 * column;
}

std::size_t SampleBytes::NameOffset(std::size_t column) {
    const PageNumber definition = Definition();
    std::size_t offset = ColumnOffset(Get<std::uint16_t>(definition, 0x2D));
    for (std::size_t i = 0; i < column; ++i)
        offset += 2U + Get<std::uint16_t>(definition, offset);
    return offset + 2;
}

std::size_t SampleBytes::IndexOffset(std::size_t index) {
    return NameOffset(Get<std::uint16_t>(Definition(), 0x2D)) - 2 + 52 * index;
}

std::size_t SampleBytes::RowStart(PageNumber page, std::size_t slot) {
    return Get<std::uint16_t>(page, 14 + 2 * slot) & 0x1FFF;
}

SampleBytes::Slot SampleBytes::FindSlot(const std::function<bool(std::uint16_t flags)>& wanted) {
    for (const PageNumber page : DataPages())
        for (std::size_t slot = 0; slot < Get<std::uint16_t>(page, 12); ++slot)
            if (wanted(Get<std::uint16_t>(page, 14 + 2 * slot) & 0xC000)) return {page, slot};
    throw std::runtime_error("no such row");
}

void SampleBytes::SetMapBit(std::uint32_t pointer, PageNumber page, bool value) {
    const PageNumber mapPage = pointer >> 8;
    std::uint8_t& byte = At(mapPage, RowStart(mapPage, pointer & 0xFF) + 5 + page / 8);
    const auto bit = static_cast<std::uint8_t>(1U << (page % 8));
    byte = static_cast<std::uint8_t>(value ? byte | bit : byte & ~bit);
}

}  // namespace jet::test
