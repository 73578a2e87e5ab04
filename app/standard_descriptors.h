#pragma once

namespace quillon {

/// Opens the null device in the place of every standard descriptor that the caller has closed.
/// Otherwise the next file opened, the database perhaps, would take its number and get the lines
/// that are meant for a person. Also sees to it that a write that cannot be done is an error of the
/// write, and that texts arrive as they are.
void PrepareStandardDescriptors();

}  // namespace quillon
