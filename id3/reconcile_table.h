#pragma once

namespace quillon {

class Run;

/// Writes every row of the difference table to Data\Quillon\QuillonReconcile.csv below the host's
/// folder: all fields in the table's order, each followed by a comma, without headings and quotes.
/// Failures are logged with "OutputReconcileTable".
void OutputReconcileTable(Run& run);

}  // namespace quillon
