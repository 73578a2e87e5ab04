#include "jet/storage/new_table.h"

#include "jet/storage/definitions.h"
#include "jet/storage/index/index_tree.h"
#include "jet/storage/properties.h"
#include "jet/storage/usage_map.h"

namespace jet::storage {

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

}  // namespace jet::storage
