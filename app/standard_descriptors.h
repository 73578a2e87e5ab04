#pragma once

namespace quillon {

/// Opens the null device in the place of every standard descriptor that the caller has closed.
/// Otherwise the next file opened, the database perhaps, would take its number and get the lines
/// that are meant for a person.
void FillStandardDescriptors();

}  // namespace quillon
