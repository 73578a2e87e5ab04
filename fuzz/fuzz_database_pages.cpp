// A database file with changed bytes: whatever they are, the checker comes to an end, and opening
// it and reading every row gives rows or an error.
//
// The input is a list of changes, five bytes each (page, offset in the page, new byte), to a small
// database that the target makes itself: so inputs stay short, and every change hits something.

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <random>
#include <span>
#include <string>
#include <vector>

#include "fuzz/attempt.h"
#include "fuzz/memory_files.h"
#include "jet/check.h"
#include "jet/storage/database_file.h"
#include "jet/storage/header.h"
#include "jet/storage/pager.h"
#include "jet/verify/check_pages.h"

namespace {

namespace storage = jet::storage;

constexpr const char* Path = "fuzz.mdb";
constexpr std::size_t ChangeSize = 5;

void Fill(const std::filesystem::path& path) {
    using jet::ColumnType;
    const jet::TableDefinition songs{
        .name = "Songs",
        .columns = {{.name = "ID", .type = ColumnType::Long, .autoNumber = true},
                    {.name = "Title", .type = ColumnType::Text, .size = 100},
                    {.name = "Notes", .type = ColumnType::Memo},
                    {.name = "Mine", .type = ColumnType::Boolean}},
        .indexes = {{.name = "PrimaryKey", .columns = {{0, true}}, .primary = true},
                    {.name = "Title", .columns = {{1, true}}},
                    {.name = "Notes", .columns = {{2, false}}, .ignoreNulls = true}}};
    storage::DatabaseFile::Create(path, std::span(&songs, 1));
    auto file = storage::DatabaseFile::Open(path, jet::OpenMode::ReadWrite);
    storage::Table& table = file.OpenTable("Songs");
    storage::RowId first;
    for (int i = 0; i < 160; ++i) {
        const std::size_t length = i % 40 == 7 ? 9000 : (i % 10 == 3 ? 100 : 5);
        const jet::Value notes =
            i % 3 == 0 ? jet::Value{jet::Null{}} : jet::Value{std::string(length, 'n')};
        const std::vector<jet::Value> row{jet::Null{}, "Song number " + std::to_string(i), notes,
                                          i % 2 == 0};
        const auto inserted = table.Insert(row);
        if (i == 0) first = inserted.row;
    }
    const storage::FieldChange change{.column = 1, .value = std::string(99, 's')};
    table.Update(first, std::span(&change, 1));
    file.Commit();
}

std::vector<std::uint8_t> MakeDatabase() {
    const auto folder = std::filesystem::temp_directory_path() /
                        ("fuzz_database_" + std::to_string(std::random_device{}()));
    std::filesystem::create_directory(folder);
    Fill(folder / Path);
    std::vector<std::uint8_t> content;
    {
        std::ifstream stream(folder / Path, std::ios::binary);
        content.assign(std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>());
    }
    std::filesystem::remove_all(folder);
    return content;
}

std::vector<std::uint8_t> Changed(std::span<const std::uint8_t> input) {
    static const std::vector<std::uint8_t> database = MakeDatabase();
    std::vector<std::uint8_t> content = database;
    const std::size_t pages = content.size() / storage::PageSize;
    for (; input.size() >= ChangeSize; input = input.subspan(ChangeSize)) {
        const std::size_t page = storage::Load<std::uint16_t>(input, 0) % pages;
        const std::size_t offset = storage::Load<std::uint16_t>(input, 2) % storage::PageSize;
        content[page * storage::PageSize + offset] = input[4];
    }
    return content;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::vector<std::uint8_t> content = Changed({data, size});
    const auto files = std::make_shared<fuzz::MemoryFiles>(Path, content);
    fuzz::Attempt([&] {
        storage::CheckHeader(std::span(content).first(storage::PageSize), Path);
        storage::Pager pager(files, Path, false);
        jet::verify::CheckPages(pager);
    });
    fuzz::Attempt([&] {
        auto file = storage::DatabaseFile::Open(Path, jet::OpenMode::ReadOnly, files);
        for (const std::string& name : file.TableNames())
            fuzz::Attempt(
                [&] { file.OpenTable(name).Scan([](storage::RowId, storage::Row&&) {}); });
    });
    return 0;
}
