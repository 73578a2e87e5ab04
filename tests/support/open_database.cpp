#include "tests/support/open_database.h"

#include <algorithm>
#include <string>

#include "platform/portable/drive_table.h"
#include "platform/portable/jet_database.h"
#include "platform/portable/path_resolver.h"

namespace quillon::support {

std::unique_ptr<Connection> OpenDatabase(const std::filesystem::path& path) {
    PathResolver resolver{DriveTable(path.parent_path())};
    JetDatabaseProvider provider(resolver);
    // On Windows it has its own drive.
    std::string windowsPath = (path.has_root_name() ? "" : "Z:") + path.string();
    std::replace(windowsPath.begin(), windowsPath.end(), '/', '\\');
    return provider.Open("Provider = Microsoft.Jet.OLEDB.4.0; Data Source=" + windowsPath);
}

}  // namespace quillon::support
