#pragma once

#include <map>
#include <memory>
#include <string>
#include <string_view>

#include "platform/database.h"
#include "platform/portable/path_resolver.h"

namespace jet {
class Database;
}

namespace quillon {

/// What a provider's connection string says.
struct ConnectionString {
    std::string provider;
    std::string dataSource;  ///< the file's Windows path
};

/// Takes "Provider = ...; Data Source=..." apart: pairs between semicolons, names without letter
/// case, a value perhaps in quotes. Pairs of other names mean nothing here.
ConnectionString ParseConnectionString(std::string_view text);

/// Opens `.mdb` files with the embedded database. Connections to one file that are open at the same
/// time share it, as they do with the provider that this one stands in for.
class JetDatabaseProvider : public DatabaseProvider {
  public:
    /// The resolver must outlive the provider.
    explicit JetDatabaseProvider(PathResolver& resolver) : resolver_(resolver) {}

    /// Failure: Database with the reason in words, or that of the path.
    std::unique_ptr<Connection> Open(std::string_view connectionString) override;

  private:
    PathResolver& resolver_;
    std::map<std::string, std::weak_ptr<jet::Database>> open_;  ///< by real local path
};

}  // namespace quillon
