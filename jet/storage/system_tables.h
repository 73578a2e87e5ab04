#pragma once

#include "jet/storage/table_layout.h"

namespace jet::storage {

/// Layouts of the four tables that describe a database, without pages and maps.
TableLayout ObjectsLayout();
TableLayout AccessControlLayout();
TableLayout QueriesLayout();
TableLayout RelationshipsLayout();

}  // namespace jet::storage
