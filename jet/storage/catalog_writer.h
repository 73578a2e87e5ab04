#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "jet/storage/pager.h"
#include "jet/storage/stored_table.h"
#include "jet/value.h"

namespace jet::storage {

/// A security id as stored in databases with the creation date of NewHeader().
enum class SecurityId : std::uint16_t {
    Admin = 0x8B64,
    Engine = 0x8965,
    Users = 0x8B65,
    Creator = 0x8E65,
};

/// Adds objects and permissions to a database's catalog.
class CatalogWriter {
  public:
    explicit CatalogWriter(Pager& pages);

    struct Object {
        std::int32_t id = 0, parent = 0;
        std::string name;
        std::int16_t type = 0;
        std::uint32_t flags = 0;
        Bytes owner;
        Bytes properties;  ///< none when empty
    };
    void AddObject(const Object& object);
    void AddPermission(std::int32_t object, std::int32_t rights, const Bytes& who,
                       bool inheritable);

    /// Adds a user table with the usual permissions. It belongs to whom the database belongs to.
    void AddTable(const std::string& name, PageNumber definition, Bytes properties);
    /// Adds what a new database has: the containers, the database itself, the tables that describe
    /// it, and who may do what with them.
    void AddSystemObjects();

    /// The types of all objects, as the catalog numbers them.
    std::vector<std::int16_t> ObjectTypes() const;
    /// What the database, or a table, is described with beyond its definition; empty if nothing.
    Bytes PropertiesOfDatabase() const;
    Bytes PropertiesOf(PageNumber table) const;
    void SetPropertiesOfDatabase(const Bytes& properties);

    /// Whether a table or a query has this name; they share one set of names.
    bool HasTableOrQuery(std::string_view name) const;

    /// Takes a table out, with its permissions.
    void RemoveTable(PageNumber definition);
    /// Puts off no more what these changes have put off.
    void MakeNow();

  private:
    Bytes OwnerOfDatabase() const;
    /// A field of the object with this id, which should be there; and the object's row.
    Value FieldOf(std::int32_t id, std::string_view column, RowId* place = nullptr) const;
    void RemoveRows(StoredTable& table, std::string_view column, std::int32_t object);
    StoredTable objects_, permissions_;
};

}  // namespace jet::storage
