#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/database.h"
#include "platform/portable/local_file.h"
#include "platform/portable/path_resolver.h"

namespace jet {
class Database;
class RowObserver;
}  // namespace jet

namespace quillon {

/// What a provider's connection string says.
struct ConnectionString {
    std::string provider;
    std::string dataSource;  ///< the file's Windows path
};

/// Takes "Provider = ...; Data Source=..." apart: pairs between semicolons, names without letter
/// case, a value perhaps in quotes. Pairs of other names mean nothing here.
ConnectionString ParseConnectionString(std::string_view text);

/// What a provider is to know of the databases that it opens.
struct DatabaseDemands {
    /// Tables that have to be in good order; a database is refused when one of them is not. Others
    /// are refused when they are asked for.
    std::vector<std::string> tables;
    /// Is called for each other table that is damaged.
    std::function<void(const std::string&)> note;
};

/// Opens `.mdb` files with the embedded database. Connections to one file that are open at the same
/// time share it, by whatever names they were opened, as they do with the provider that this one
/// stands in for.
class JetDatabaseProvider : public DatabaseProvider {
  public:
    /// The resolver must outlive the provider.
    explicit JetDatabaseProvider(PathResolver& resolver, DatabaseDemands demands = {})
        : resolver_(resolver), demands_(std::move(demands)) {}

    /// Databases that are opened from now on tell this observer of the rows that change; null:
    /// nobody. It must outlive them.
    void SetObserver(jet::RowObserver* observer) { observer_ = observer; }

    /// Is called when the next database has been opened for writing, before anything is read from
    /// it: then no other process works on it.
    void OnceHeld(std::function<void()> work) { onceHeld_ = std::move(work); }

    /// Databases that are opened from now on keep all changes in memory, ask for no lock and never
    /// touch their files.
    void KeepInMemory() { keepsInMemory_ = true; }

    /// Failure: Database with the reason in words, or that of the path.
    std::unique_ptr<Connection> Open(std::string_view connectionString) override;

    /// Does something that changes rows through a connection of this provider: all changes become
    /// durable when it returns, or none. Where it throws they are taken back, and record sets must
    /// be opened again.
    static void Together(Connection& connection, const std::function<void()>& work);

  private:
    static FileIdentity IdentityOf(const std::string& path);
    std::shared_ptr<jet::Database> OpenFile(const std::string& path) const;

    PathResolver& resolver_;
    DatabaseDemands demands_;
    jet::RowObserver* observer_ = nullptr;
    std::function<void()> onceHeld_;
    bool keepsInMemory_ = false;
    std::map<FileIdentity, std::weak_ptr<jet::Database>> open_;
};

}  // namespace quillon
