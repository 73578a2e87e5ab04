#pragma once

#include <stdexcept>
#include <string>

namespace jet {

/// What went wrong, in the classes a caller can act on.
enum class ErrorKind {
    NotFound,      ///< the file, table or field does not exist
    NotADatabase,  ///< empty, not an .mdb file, or another version of the format
    Encrypted,     ///< pages are encoded or a password is set
    Damaged,       ///< the file contradicts itself or ends too early
    InUse,         ///< another program has the database open
    Changed,       ///< another program has replaced or written the file since it was opened
    ReadOnly,      ///< the file or folder may not be written
    Io,            ///< the operating system refused (disk full, read error)
    Syntax,        ///< the statement or criterion cannot be understood
    TypeMismatch,  ///< a value cannot become what its field needs
    Overflow,      ///< a number does not fit its field
    TooLong,       ///< a text is longer than its field allows
    Duplicate,     ///< a unique index already holds the value
    Required,      ///< a field that needs a value got Null
    NoCurrentRow,  ///< the record set stands at its beginning or end
    Interrupted,   ///< the statement was ended before its time, as was asked for
    NotSupported,  ///< valid, but beyond what this library does
};

/// The one exception type of this library. `what()` is a complete sentence that names the file,
/// table, field or place it concerns.
class Error : public std::runtime_error {
  public:
    Error(ErrorKind kind, const std::string& message) : std::runtime_error(message), kind_(kind) {}
    ErrorKind Kind() const noexcept { return kind_; }

  private:
    ErrorKind kind_;
};

}  // namespace jet
