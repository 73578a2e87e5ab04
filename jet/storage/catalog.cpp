#include "jet/storage/catalog.h"

#include <algorithm>
#include <string_view>
#include <utility>

#include "jet/error.h"
#include "jet/storage/damaged.h"
#include "jet/storage/index/index_key.h"
#include "jet/storage/properties.h"
#include "jet/storage/stored_table.h"

namespace jet::storage {

namespace {

constexpr std::int64_t LocalKind = 1, OdbcKind = 4, LinkedKind = 6;
/// Set for the tables of the engine and of Access itself.
constexpr std::uint32_t SystemFlags = 0x80000002;

std::size_t ColumnOf(const StoredTable& objects, std::string_view name, ColumnType type) {
    const auto& definition = objects.Definition();
    const auto column = definition.FindColumn(name);
    if (!column || definition.columns[*column].type != type) {
        ThrowDamaged("its catalog lacks the field " + std::string(name));
    }
    return *column;
}

template <typename T>
T As(const Value& value, const T& ifNull) {
    const T* held = std::get_if<T>(&value);
    return held == nullptr ? ifNull : *held;
}

std::vector<CatalogEntry> Read(Pager& pages) {
    const StoredTable objects(pages, "MSysObjects", ObjectsPage, {});
    const std::size_t id = ColumnOf(objects, "Id", ColumnType::Long),
                      name = ColumnOf(objects, "Name", ColumnType::Text),
                      type = ColumnOf(objects, "Type", ColumnType::Integer),
                      flags = ColumnOf(objects, "Flags", ColumnType::Long),
                      database = ColumnOf(objects, "Database", ColumnType::Memo),
                      properties = ColumnOf(objects, "LvProp", ColumnType::Ole);
    std::vector<CatalogEntry> entries;
    const std::vector<std::size_t> wanted{id, name, type, flags};
    objects.ScanColumns(wanted, [&](RowId row, std::span<Value> object) {
        const auto kind = As<std::int64_t>(object[2], 0);
        const bool isLinked = kind == LinkedKind || kind == OdbcKind;
        if (kind != LocalKind && !isLinked) return;
        if ((static_cast<std::uint32_t>(As<std::int64_t>(object[3], 0)) & SystemFlags) != 0) {
            return;
        }
        CatalogEntry entry;
        entry.name = As<std::string>(object[1], {});
        entry.isLinked = isLinked;
        if (isLinked) {
            entry.linkedTo = As<std::string>(objects.ReadColumn(row, database), {});
        } else {
            entry.definition = static_cast<PageNumber>(As<std::int64_t>(object[0], 0));
            entry.requiredColumns =
                RequiredColumns(As<Bytes>(objects.ReadColumn(row, properties), {}));
        }
        entries.push_back(std::move(entry));
    });
    std::sort(entries.begin(), entries.end(),
              [](const auto& a, const auto& b) { return CompareTexts(a.name, b.name) < 0; });
    return entries;
}

}  // namespace

std::vector<CatalogEntry> ReadCatalog(Pager& pages) {
    const std::string prefix = "its catalog cannot be read: ";
    try {
        return Read(pages);
    } catch (const DamagedFile& damage) {
        throw DamagedFile(damage.File(), prefix + damage.What());
    } catch (const Error& error) {
        if (error.Kind() != ErrorKind::Damaged) throw;
        ThrowDamaged(prefix + error.what());
    }
}

}  // namespace jet::storage
