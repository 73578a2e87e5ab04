#include "jet/storage/catalog_writer.h"

#include <ctime>
#include <string_view>
#include <utility>

#include "jet/storage/bytes.h"
#include "jet/storage/catalog.h"

namespace jet::storage {

namespace {

constexpr std::int32_t Root = 0x0F000000, Tables = 0x0F000001, Databases = 0x0F000002,
                       Relationships = 0x0F000003, ThisDatabase = 0x10000000;
constexpr std::int16_t TableType = 1, DatabaseType = 2, ContainerType = 3;
constexpr std::uint32_t SystemFlag = 0x80000000;
constexpr std::int32_t FullRights = 0x000FFEFF;

/// The local time as an OLE date, as the database engine stamps its objects.
Date Now() {
    const std::time_t now = std::time(nullptr);
    std::tm local{};
    localtime_r(&now, &local);
    constexpr double UnixEpoch = 25569, SecondsPerDay = 86400;
    return {UnixEpoch + static_cast<double>(now + local.tm_gmtoff) / SecondsPerDay};
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
    Set(objects_, row, "Owner", Stored(object.owner));
    if (!object.properties.empty()) Set(objects_, row, "LvProp", object.properties);
    objects_.Insert(row);
}

void CatalogWriter::AddPermission(std::int32_t object, std::int32_t rights, SecurityId owner,
                                  bool inheritable) {
    Row row(permissions_.Definition().columns.size());
    Set(permissions_, row, "ObjectId", std::int64_t{object});
    Set(permissions_, row, "ACM", std::int64_t{rights});
    Set(permissions_, row, "SID", Stored(owner));
    Set(permissions_, row, "FInheritable", inheritable);
    permissions_.Insert(row);
}

void CatalogWriter::AddTable(const std::string& name, PageNumber definition, Bytes properties) {
    const auto id = static_cast<std::int32_t>(definition);
    AddObject({.id = id,
               .parent = Tables,
               .name = name,
               .type = TableType,
               .flags = 0,
               .owner = SecurityId::Admin,
               .properties = std::move(properties)});
    AddPermission(id, FullRights, SecurityId::Admin, false);
    AddPermission(id, FullRights, SecurityId::Users, false);
}

void CatalogWriter::AddSystemObjects() {
    const auto add = [this](std::int32_t id, const char* name, std::int32_t parent,
                            std::int16_t type, SecurityId owner) {
        AddObject({.id = id,
                   .parent = parent,
                   .name = name,
                   .type = type,
                   .flags = SystemFlag,
                   .owner = owner,
                   .properties = {}});
    };
    constexpr auto Admin = SecurityId::Admin, Engine = SecurityId::Engine,
                   Users = SecurityId::Users, Creator = SecurityId::Creator;
    add(Tables, "Tables", Root, ContainerType, Engine);
    add(Databases, "Databases", Root, ContainerType, Engine);
    add(Relationships, "Relationships", Root, ContainerType, Engine);
    add(ThisDatabase, "MSysDb", Databases, DatabaseType, Admin);
    add(2, "MSysObjects", Tables, TableType, Engine);
    add(3, "MSysACEs", Tables, TableType, Engine);
    add(4, "MSysQueries", Tables, TableType, Engine);
    add(5, "MSysRelationships", Tables, TableType, Engine);

    AddPermission(2, 0x60000, Admin, false);
    AddPermission(3, 0x60000, Admin, false);
    AddPermission(4, 0x60000, Admin, false);
    AddPermission(5, 0xE0000, Admin, false);
    AddPermission(Tables, 0xF00FE, Creator, true);
    AddPermission(Tables, 0x60001, Admin, false);
    AddPermission(Relationships, 0xF00FE, Creator, true);
    AddPermission(Relationships, 0x60001, Admin, false);
    AddPermission(Databases, 0x60000, Admin, false);
    AddPermission(ThisDatabase, 0x6000E, Admin, false);
    AddPermission(ThisDatabase, 0x0000E, Users, false);
    AddPermission(4, 0x00014, Users, false);
    AddPermission(5, 0x00014, Users, false);
    AddPermission(2, 0x00014, Users, false);
    AddPermission(Tables, 0xFFEFF, Users, true);
    AddPermission(Relationships, 0xFFFFF, Users, true);
}

}  // namespace jet::storage
