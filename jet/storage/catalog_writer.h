#pragma once

#include <cstdint>
#include <string>

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
        SecurityId owner = SecurityId::Admin;
        Bytes properties;  ///< none when empty
    };
    void AddObject(const Object& object);
    void AddPermission(std::int32_t object, std::int32_t rights, SecurityId owner,
                       bool inheritable);

    /// Adds a user table with the usual permissions.
    void AddTable(const std::string& name, PageNumber definition, Bytes properties);
    /// Adds what a new database has: the containers, the database itself, the tables that describe
    /// it, and who may do what with them.
    void AddSystemObjects();

  private:
    StoredTable objects_, permissions_;
};

}  // namespace jet::storage
