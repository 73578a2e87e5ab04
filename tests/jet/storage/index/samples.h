#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "jet/schema.h"
#include "jet/storage/format/page.h"
#include "jet/value.h"

namespace jet::test {

/// The file's name, fit for the name of a test.
std::string SampleName(const std::filesystem::path& database);

struct SampleColumn {
    ColumnType type = ColumnType::Text;
    std::uint8_t scale = 0;
    bool ascending = true;
};

struct SampleIndex {
    std::string table, name;
    storage::PageNumber definition = 0, root = 0;
    std::vector<SampleColumn> columns;
};

/// An index entry as an independent reader found it in the file.
struct SampleEntry {
    std::string table, index;
    Bytes key;
    storage::RowId row;
    std::vector<Value> values;
};

/// What is written down beside a sample database about its indexes.
struct SampleIndexes {
    std::vector<SampleIndex> indexes;
    std::vector<SampleEntry> entries;

    const SampleIndex& Find(const SampleEntry& entry) const;
};
SampleIndexes ReadSampleIndexes(const std::filesystem::path& database);

}  // namespace jet::test
