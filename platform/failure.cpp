#include "platform/failure.h"

#include <new>

namespace quillon {
namespace {

std::string Describe(FailureNumber number, const std::string& concerning) {
    const std::string text = FailureText(number);
    return concerning.empty() ? text : text + ": " + concerning;
}

}  // namespace

Failure::Failure(FailureNumber number, const std::string& concerning)
    : std::runtime_error(Describe(number, concerning)), number_(number), concerned_(concerning) {}

Failure::Failure(Verbatim, FailureNumber number, const std::string& description,
                 const std::string& concerned)
    : std::runtime_error(description), number_(number), concerned_(concerned) {}

Failure Failure::Described(FailureNumber number, const std::string& description,
                           const std::string& concerned) {
    return {Verbatim{}, number, description, concerned};
}

const char* FailureText(FailureNumber number) {
    switch (number) {
        case FailureNumber::InvalidProcedureCall:
            return "Invalid procedure call or argument";
        case FailureNumber::Overflow:
            return "Overflow";
        case FailureNumber::SubscriptOutOfRange:
            return "Subscript out of range";
        case FailureNumber::TypeMismatch:
            return "Type mismatch";
        case FailureNumber::BadFileName:
            return "Bad file name or number";
        case FailureNumber::FileNotFound:
            return "File not found";
        case FailureNumber::FileAlreadyExists:
            return "File already exists";
        case FailureNumber::DiskFull:
            return "Disk full";
        case FailureNumber::InputPastEnd:
            return "Input past end of file";
        case FailureNumber::PermissionDenied:
            return "Permission denied";
        case FailureNumber::PathFileAccess:
            return "Path/File access error";
        case FailureNumber::PathNotFound:
            return "Path not found";
        case FailureNumber::ObjectRequired:
            return "Object required";
        case FailureNumber::DuplicateKey:
            return "This key is already associated with an element of this collection";
        case FailureNumber::Database:
            return "Database error";
    }
    return "Application-defined or object-defined error";
}

std::string DescriptionOf(const std::exception& failure) {
    const bool lacksMemory = dynamic_cast<const std::bad_alloc*>(&failure) != nullptr ||
                             dynamic_cast<const std::length_error*>(&failure) != nullptr;
    return lacksMemory ? "Not enough memory" : failure.what();
}

}  // namespace quillon
