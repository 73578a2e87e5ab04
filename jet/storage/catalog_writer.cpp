#include "jet/storage/catalog_writer.h"

#include <chrono>
#include <ctime>
#include <string_view>
#include <utility>

#include "jet/storage/bytes.h"
#include "jet/storage/catalog.h"
#include "jet/storage/system_file.h"
#include "jet/text.h"

namespace jet::storage {

namespace {

constexpr std::int32_t Root = 0x0F000000, Tables = 0x0F000001, Databases = 0x0F000002,
                       Relationships = 0x0F000003, ThisDatabase = 0x10000000;
constexpr std::int16_t TableType = 1, DatabaseType = 2, ContainerType = 3;
constexpr std::uint32_t SystemFlag = 0x80000000;
constexpr std::int32_t FullRights = 0x000FFEFF;
constexpr std::size_t ShortIdSize = 2;
constexpr unsigned AdminToUsers = 0x03 ^ 0x02;

/// The local time as an OLE date, as the database engine stamps its objects.
Date Now() {
    const std::tm local = LocalTime(std::time(nullptr));
    const auto day = std::chrono::year(local.tm_year + 1900) /
                     std::chrono::month(static_cast<unsigned>(local.tm_mon + 1)) /
                     std::chrono::day(static_cast<unsigned>(local.tm_mday));
    constexpr double UnixEpoch = 25569, SecondsPerDay = 86400;
    const int seconds = (local.tm_hour * 60 + local.tm_min) * 60 + local.tm_sec;
    return {UnixEpoch + static_cast<double>(std::chrono::sys_days(day).time_since_epoch().count()) +
            seconds / SecondsPerDay};
}

Bytes Stored(SecurityId id) {
    Bytes bytes;
    Append(bytes, static_cast<std::uint16_t>(id));
    return bytes;
}

void Set(const StoredTable& table, Row& row, std::string_view column, Value value) {
    row[table.Definition().FindColumn(column).value()] = std::move(value);
}

}  // namespace

CatalogWriter::CatalogWriter(Pager& pages)
    : objects_(pages, "MSysObjects", ObjectsPage, {}),
      permissions_(pages, "MSysACEs", AccessControlPage, {}) {}

void CatalogWriter::AddObject(const Object& object) {
    Row row(objects_.Definition().columns.size());
    const Date now = Now();
    Set(objects_, row, "Id", std::int64_t{object.id});
    Set(objects_, row, "ParentId", std::int64_t{object.parent});
    Set(objects_, row, "Name", object.name);
    Set(objects_, row, "Type", std::int64_t{object.type});
    Set(objects_, row, "DateCreate", now);
    Set(objects_, row, "DateUpdate", now);
    Set(objects_, row, "Flags", std::int64_t{static_cast<std::int32_t>(object.flags)});
    Set(objects_, row, "Owner", object.owner);
    if (!object.properties.empty()) Set(objects_, row, "LvProp", object.properties);
    objects_.Insert(row);
}

void CatalogWriter::AddPermission(std::int32_t object, std::int32_t rights, const Bytes& who,
                                  bool inheritable) {
    Row row(permissions_.Definition().columns.size());
    Set(permissions_, row, "ObjectId", std::int64_t{object});
    Set(permissions_, row, "ACM", std::int64_t{rights});
    Set(permissions_, row, "SID", who);
    Set(permissions_, row, "FInheritable", inheritable);
    permissions_.Insert(row);
}

void CatalogWriter::AddTable(const std::string& name, PageNumber definition, Bytes properties) {
    const auto id = static_cast<std::int32_t>(definition);
    const Bytes admin = OwnerOfDatabase();
    Bytes users = admin;
    if (users.size() == ShortIdSize) users[0] = static_cast<std::uint8_t>(users[0] ^ AdminToUsers);
    AddObject({.id = id,
               .parent = Tables,
               .name = name,
               .type = TableType,
               .flags = 0,
               .owner = admin,
               .properties = std::move(properties)});
    AddPermission(id, FullRights, admin, false);
    if (users != admin) AddPermission(id, FullRights, users, false);
}

/// The ids of the user Admin and of the group Users differ in their first byte, whatever the mask
/// that the database keeps them under.
Bytes CatalogWriter::OwnerOfDatabase() const {
    const Value owner = FieldOf(ThisDatabase, "Owner");
    const auto* bytes = std::get_if<Bytes>(&owner);
    return bytes && !bytes->empty() ? *bytes : Stored(SecurityId::Admin);
}

Value CatalogWriter::FieldOf(std::int32_t id, std::string_view column, RowId* place) const {
    const TableDefinition& definition = objects_.Definition();
    const std::size_t columns[] = {definition.FindColumn("Id").value(),
                                   definition.FindColumn(column).value()};
    Value value;
    objects_.ScanColumns(columns, [&](RowId row, std::span<Value> values) {
        const auto* known = std::get_if<std::int64_t>(values.data());
        if (!known || *known != id) return;
        value = values[1];
        if (place) *place = row;
    });
    return value;
}

std::vector<std::int16_t> CatalogWriter::ObjectTypes() const {
    const std::size_t columns[] = {objects_.Definition().FindColumn("Type").value()};
    std::vector<std::int16_t> types;
    objects_.ScanColumns(columns, [&](RowId, std::span<Value> values) {
        if (const auto* type = std::get_if<std::int64_t>(values.data()))
            types.push_back(static_cast<std::int16_t>(*type));
    });
    return types;
}

Bytes CatalogWriter::PropertiesOf(PageNumber table) const {
    const Value properties = FieldOf(static_cast<std::int32_t>(table), "LvProp");
    const auto* bytes = std::get_if<Bytes>(&properties);
    return bytes ? *bytes : Bytes();
}

Bytes CatalogWriter::PropertiesOfDatabase() const {
    return PropertiesOf(ThisDatabase);
}

void CatalogWriter::SetPropertiesOfDatabase(const Bytes& properties) {
    if (properties.empty()) return;
    RowId row;
    FieldOf(ThisDatabase, "Id", &row);
    const FieldChange change[] = {{objects_.Definition().FindColumn("LvProp").value(), properties}};
    objects_.Update(row, change);
}

bool CatalogWriter::HasTableOrQuery(std::string_view name) const {
    const TableDefinition& definition = objects_.Definition();
    const std::size_t columns[] = {definition.FindColumn("ParentId").value(),
                                   definition.FindColumn("Name").value()};
    bool found = false;
    objects_.ScanColumns(columns, [&](RowId, std::span<Value> values) {
        const auto* parent = std::get_if<std::int64_t>(&values[0]);
        const auto* known = std::get_if<std::string>(&values[1]);
        found = found || (parent && known && *parent == Tables && CompareTexts(*known, name) == 0);
    });
    return found;
}

void CatalogWriter::RemoveRows(StoredTable& table, std::string_view column, std::int32_t object) {
    const std::size_t columns[] = {table.Definition().FindColumn(column).value()};
    std::vector<RowId> rows;
    table.ScanColumns(columns, [&](RowId row, std::span<Value> values) {
        const auto* id = std::get_if<std::int64_t>(values.data());
        if (id && *id == object) rows.push_back(row);
    });
    for (const RowId row : rows)
        table.Delete(row);
}

void CatalogWriter::RemoveTable(PageNumber definition) {
    RemoveRows(objects_, "Id", static_cast<std::int32_t>(definition));
    RemoveRows(permissions_, "ObjectId", static_cast<std::int32_t>(definition));
}

void CatalogWriter::MakeNow() {
    objects_.MakeNow();
    permissions_.MakeNow();
}

void CatalogWriter::AddSystemObjects() {
    const auto add = [this](std::int32_t id, const char* name, std::int32_t parent,
                            std::int16_t type, SecurityId owner) {
        AddObject({.id = id,
                   .parent = parent,
                   .name = name,
                   .type = type,
                   .flags = SystemFlag,
                   .owner = Stored(owner),
                   .properties = {}});
    };
    constexpr auto Engine = SecurityId::Engine;
    add(Tables, "Tables", Root, ContainerType, Engine);
    add(Databases, "Databases", Root, ContainerType, Engine);
    add(Relationships, "Relationships", Root, ContainerType, Engine);
    add(ThisDatabase, "MSysDb", Databases, DatabaseType, SecurityId::Admin);
    add(2, "MSysObjects", Tables, TableType, Engine);
    add(3, "MSysACEs", Tables, TableType, Engine);
    add(4, "MSysQueries", Tables, TableType, Engine);
    add(5, "MSysRelationships", Tables, TableType, Engine);

    const Bytes admin = Stored(SecurityId::Admin), users = Stored(SecurityId::Users),
                creator = Stored(SecurityId::Creator);
    AddPermission(2, 0x60000, admin, false);
    AddPermission(3, 0x60000, admin, false);
    AddPermission(4, 0x60000, admin, false);
    AddPermission(5, 0xE0000, admin, false);
    AddPermission(Tables, 0xF00FE, creator, true);
    AddPermission(Tables, 0x60001, admin, false);
    AddPermission(Relationships, 0xF00FE, creator, true);
    AddPermission(Relationships, 0x60001, admin, false);
    AddPermission(Databases, 0x60000, admin, false);
    AddPermission(ThisDatabase, 0x6000E, admin, false);
    AddPermission(ThisDatabase, 0x0000E, users, false);
    AddPermission(4, 0x00014, users, false);
    AddPermission(5, 0x00014, users, false);
    AddPermission(2, 0x00014, users, false);
    AddPermission(Tables, 0xFFEFF, users, true);
    AddPermission(Relationships, 0xFFFFF, users, true);
}

}  // namespace jet::storage
