#pragma once

#include "app/console.h"
#include "app/requests.h"

namespace quillon {

/// `quillon db ...`: the embedded database from the shell. All throw jet::Error; the result is the
/// exit status.
int DbCreate(const DbCreateRequest& request, Console console);
int DbTables(const DbTablesRequest& request, Console console);
int DbSchema(const DbSchemaRequest& request, Console console);
int DbImport(const DbImportRequest& request, Console console);
int DbExport(const DbExportRequest& request, Console console);
int DbCompact(const DbCompactRequest& request, Console console);
int DbQuery(const DbQueryRequest& request, Console console);
int DbExec(const DbExecRequest& request, Console console);
int DbCheck(const DbCheckRequest& request, Console console);
int DbRecover(const DbRecoverRequest& request, Console console);

}  // namespace quillon
