#include "jet/storage/creation.h"

#include <string>
#include <vector>

#include "jet/error.h"
#include "jet/storage/catalog.h"
#include "jet/storage/data_page.h"
#include "jet/storage/definitions.h"
#include "jet/storage/header.h"
#include "jet/storage/index/index_tree.h"
#include "jet/storage/properties.h"
#include "jet/storage/system_tables.h"
#include "jet/storage/usage_map.h"

namespace jet::storage {

namespace {

/// Header, global map, the four definitions, their map rows.
constexpr PageNumber FirstPages = 7, SystemMapPage = 6;

/// The page of the global map: all pages but the first ones are free. The second map is not used.
Page GlobalMapPage() {
    constexpr PageNumber Self = 1;
    Page page;
    MakeDataPage(page, Self);
    AddRow(page, Self, MapRowSize, RowKind::Home);
    const Slot row = DataPageView(page, Self).At(0);
    for (std::size_t i = row.start + usage_map_format::BitsOffset; i < row.end; ++i)
        page[i] = 0xFF;
    page[row.start + usage_map_format::BitsOffset] = static_cast<std::uint8_t>(0xFF << FirstPages);
    AddRow(page, Self, MapRowSize, RowKind::Home);
    return page;
}

void WriteFirstPages(File& file) {
    file.WriteAt(0, NewHeader());
    file.WriteAt(PageSize, GlobalMapPage());
    constexpr Page Nothing{};
    for (PageNumber page = 2; page < FirstPages; ++page) {
        file.WriteAt(std::uint64_t{page} * PageSize, Nothing);
    }
}

void WriteSystemTables(Pager& pages) {
    MakeDataPage(pages.Modify(SystemMapPage), data_page_format::NoOwner);
    MapPages maps(pages, SystemMapPage);
    std::vector<TableLayout> layouts{ObjectsLayout(), AccessControlLayout(), QueriesLayout(),
                                     RelationshipsLayout()};
    for (std::size_t i = 0; i < layouts.size(); ++i) {
        layouts[i].pages = {ObjectsPage + static_cast<PageNumber>(i)};
        WriteTable(pages, maps, layouts[i]);
    }
}

}  // namespace

void MakeIndex(PageStore& pages, MapPages& maps, PageNumber table, RealIndexLayout& index) {
    index.map = maps.Add();
    index.root = pages.Allocate();
    IndexTree::MakeEmpty(pages.Modify(index.root), table);
    UsageMap(pages, index.map).Add(index.root);
}

void WriteTable(PageStore& pages, MapPages& maps, TableLayout& layout) {
    layout.owned = maps.Add();
    layout.free = maps.Add();
    for (auto& column : layout.longColumns) {
        column.owned = maps.Add();
        column.free = maps.Add();
    }
    for (auto& index : layout.realIndexes)
        MakeIndex(pages, maps, layout.Page(), index);
    WriteTableLayout(pages, layout);
}

PageNumber AddTable(Pager& pages, CatalogWriter& catalog, const TableDefinition& table) {
    TableLayout layout = LayoutOf(table);
    layout.pages = {pages.Allocate()};
    MapPages maps(pages);
    WriteTable(pages, maps, layout);
    catalog.AddTable(table.name, layout.Page(), PropertiesOf(table));
    return layout.Page();
}

void WriteNewDatabase(const std::shared_ptr<FileSystem>& files, const std::filesystem::path& path,
                      std::span<const TableDefinition> tables) {
    WriteFirstPages(*files->Open(path, FileAccess::Replace));
    Pager pages(files, path, true);
    WriteSystemTables(pages);
    CatalogWriter catalog(pages);
    catalog.AddSystemObjects();
    for (const TableDefinition& table : tables)
        AddTable(pages, catalog, table);
    pages.Commit();
}

}  // namespace jet::storage
