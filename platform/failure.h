#pragma once

#include <exception>
#include <stdexcept>
#include <string>

namespace quillon {

/// Numbers of the classic runtime's failures that this system can meet.
enum class FailureNumber : int {
    InvalidProcedureCall = 5,
    Overflow = 6,
    SubscriptOutOfRange = 9,
    TypeMismatch = 13,
    BadFileName = 52,
    FileNotFound = 53,
    FileAlreadyExists = 58,
    DiskFull = 61,
    InputPastEnd = 62,
    PermissionDenied = 70,
    PathFileAccess = 75,
    PathNotFound = 76,
    ObjectRequired = 424,
    DuplicateKey = 457,
    Database = 3001,  ///< whatever the database engine refused; the description says what
};

/// The one exception of the core and of every platform interface: a number and a description in
/// the classic runtime's wording, followed by what it concerned ("Path not found: D:\Music").
class Failure : public std::runtime_error {
  public:
    /// Description = the number's own wording + ": " + what it concerned.
    Failure(FailureNumber number, const std::string& concerning);

    /// For those that word their own descriptions. `concerned` is what the description names.
    static Failure Described(FailureNumber number, const std::string& description,
                             const std::string& concerned = {});

    FailureNumber Number() const noexcept { return number_; }
    /// What it concerned, a path for instance; "" where its description names nothing.
    const std::string& Concerned() const noexcept { return concerned_; }

  private:
    struct Verbatim {};
    Failure(Verbatim, FailureNumber number, const std::string& description,
            const std::string& concerned);
    FailureNumber number_;
    std::string concerned_;
};

/// The runtime's wording of a failure number, e.g. "Type mismatch".
const char* FailureText(FailureNumber number);

/// What happened, in words for a person. The standard library's own words for memory that cannot be
/// had ("std::bad_alloc") are none.
std::string DescriptionOf(const std::exception& failure);

}  // namespace quillon
