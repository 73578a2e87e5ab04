#include "jet/storage/compaction.h"

#include <map>
#include <string>
#include <vector>

#include "jet/error.h"
#include "jet/storage/catalog_writer.h"
#include "jet/storage/creation.h"
#include "jet/storage/definitions.h"
#include "jet/storage/map_row.h"
#include "jet/storage/stored_table.h"

namespace jet::storage {

namespace {

/// 16 MB of changed pages.
constexpr std::size_t MostPagesInMemory = 4096;

/// What tables are not, by the low byte and sign of an object's type.
struct OtherKind {
    std::int16_t type;
    const char* name;
};
constexpr OtherKind OtherKinds[] = {{4, "linked table"}, {5, "query"},      {6, "linked table"},
                                    {8, "relationship"}, {-32768, "form"},  {-32764, "report"},
                                    {-32766, "macro"},   {-32761, "module"}};

/// Error(NotSupported) where the catalog names something that is no table.
void RequireNothingElse(const CatalogWriter& catalog, const std::string& file) {
    std::map<std::string, std::size_t> counts;
    for (const std::int16_t type : catalog.ObjectTypes())
        for (const OtherKind& kind : OtherKinds)
            if (kind.type == type) ++counts[kind.name];
    if (counts.empty()) return;
    std::string list;
    for (const auto& [name, count] : counts) {
        list += (list.empty() ? "" : ", ") + std::to_string(count) + " " +
                (count == 1        ? name
                 : name == "query" ? "queries"
                                   : name + "s");
    }
    throw Error(ErrorKind::NotSupported,
                file + " cannot be compacted here: it has more than tables (" + list +
                    "), which the copy would lose. Use the program that made them.");
}

/// The layout of the copy: fields get new places, but stay what they are.
TableLayout LayoutOfCopy(const StoredTable& table, const TableLayout& before) {
    TableLayout layout = LayoutOf(table.Definition());
    for (std::size_t i = 0; i < layout.columns.size(); ++i) {
        ColumnLayout& column = layout.columns[i];
        const ColumnLayout& old = before.columns[i];
        column.flags = static_cast<std::uint8_t>((old.flags & ~ColumnLayout::FixedFlag) |
                                                 (column.flags & ColumnLayout::FixedFlag));
        column.compressed = old.compressed;
        column.sortOrder = old.sortOrder;
        column.sortVersion = old.sortVersion;
    }
    return layout;
}

class Copier {
  public:
    Copier(Pager& from, const std::shared_ptr<FileSystem>& files, const std::filesystem::path& to)
        : from_(from), to_(files, to, true), oldCatalog_(from), newCatalog_(to_) {}

    std::size_t Copy(std::span<const CatalogEntry> tables) {
        newCatalog_.SetPropertiesOfDatabase(oldCatalog_.PropertiesOfDatabase());
        std::size_t rows = 0;
        for (const CatalogEntry& table : tables)
            rows += CopyTable(table);
        to_.Commit();
        return rows;
    }

  private:
    std::size_t CopyTable(const CatalogEntry& entry) {
        const StoredTable table(from_, entry.name, entry.definition, entry.requiredColumns);
        if (const auto reason = table.ReadOnlyReason()) {
            throw Error(ErrorKind::NotSupported,
                        "Table " + entry.name + " cannot be copied: " + *reason + ".");
        }
        TableLayout layout = LayoutOfCopy(table, ReadTableLayout(from_, entry.definition));
        layout.pages = {to_.Allocate()};
        MapPages maps(to_);
        WriteTable(to_, maps, layout);
        newCatalog_.AddTable(entry.name, layout.Page(), oldCatalog_.PropertiesOf(entry.definition));
        const std::size_t rows = CopyRows(table, layout.Page());
        const TableCounters old(from_, entry.definition);
        TableCounters(to_, layout.Page()).SetAutoNumber(old.AutoNumber(), old.AutoNumberStep());
        return rows;
    }

    /// Rows that lack a value which was made obligatory later come along.
    std::size_t CopyRows(const StoredTable& table, PageNumber definition) {
        StoredTable copy(to_, table.Definition().name, definition, {});
        copy.KeepOrder();  // the first of several in the file stays the first
        table.Scan([&](RowId, Row&& row) {
            copy.Insert(row);
            if (to_.ChangedPages() >= MostPagesInMemory) to_.Commit();
        });
        copy.MakeNow();
        if (copy.RowCount() != table.RowCount()) {
            throw Error(ErrorKind::Damaged, "Table " + table.Definition().name + " counts " +
                                                std::to_string(table.RowCount()) +
                                                " rows, but has " +
                                                std::to_string(copy.RowCount()) + ".");
        }
        return copy.RowCount();
    }

    Pager& from_;
    Pager to_;
    CatalogWriter oldCatalog_, newCatalog_;
};

}  // namespace

std::size_t WriteCompacted(Pager& from, std::span<const CatalogEntry> tables,
                           const std::shared_ptr<FileSystem>& files,
                           const std::filesystem::path& to) {
    RequireNothingElse(CatalogWriter(from), from.Path().string());
    WriteNewDatabase(files, to, {});
    return Copier(from, files, to).Copy(tables);
}

}  // namespace jet::storage
