#include "platform/failure.h"

#include <gtest/gtest.h>
#include <utility>

namespace quillon {
namespace {

TEST(Failure, EveryNumberHasItsWording) {
    const std::pair<int, const char*> wordings[] = {
        {5, "Invalid procedure call or argument"},
        {6, "Overflow"},
        {9, "Subscript out of range"},
        {13, "Type mismatch"},
        {52, "Bad file name or number"},
        {53, "File not found"},
        {58, "File already exists"},
        {61, "Disk full"},
        {62, "Input past end of file"},
        {70, "Permission denied"},
        {75, "Path/File access error"},
        {76, "Path not found"},
        {424, "Object required"},
        {457, "This key is already associated with an element of this collection"},
        {3001, "Database error"}};
    for (const auto& [number, wording] : wordings)
        EXPECT_STREQ(FailureText(static_cast<FailureNumber>(number)), wording);
}

TEST(Failure, SaysWhatItConcerns) {
    const Failure failure(FailureNumber::PathNotFound, "D:\\Music");
    EXPECT_STREQ(failure.what(), "Path not found: D:\\Music");
    EXPECT_EQ(failure.Number(), FailureNumber::PathNotFound);
    EXPECT_STREQ(Failure(FailureNumber::ObjectRequired, "").what(), "Object required");
}

TEST(Failure, KeepsAnEnginesOwnWords) {
    const Failure failure = Failure::Described(FailureNumber::Database, "No such field: X");
    EXPECT_STREQ(failure.what(), "No such field: X");
    EXPECT_EQ(failure.Number(), FailureNumber::Database);
}

}  // namespace
}  // namespace quillon
