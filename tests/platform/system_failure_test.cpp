#include "platform/portable/system_failure.h"

#include <cerrno>
#include <gtest/gtest.h>

namespace quillon {
namespace {

TEST(SystemFailure, SpeaksTheRuntimesWords) {
    const auto text = [](int error) {
        return std::string(SystemFailure(error, "D:\\x", FailureNumber::FileNotFound).what());
    };
    EXPECT_EQ(text(ENOENT), "File not found: D:\\x");
    for (const int error : {ENOTDIR, ELOOP})
        EXPECT_EQ(text(error), "Path not found: D:\\x");
    for (const int error : {EACCES, EPERM, EROFS, EBUSY, EISDIR, ETXTBSY})
        EXPECT_EQ(text(error), "Permission denied: D:\\x");
    for (const int error : {ENOSPC, EDQUOT, EFBIG})
        EXPECT_EQ(text(error), "Disk full: D:\\x");
    for (const int error : {ENAMETOOLONG, EILSEQ, EINVAL})
        EXPECT_EQ(text(error), "Bad file name or number: D:\\x");
    EXPECT_EQ(text(EEXIST), "File already exists: D:\\x");
    EXPECT_EQ(text(EIO), "Path/File access error: D:\\x (Input/output error)");
    EXPECT_STREQ(SystemFailure(ENOENT, "D:\\x").what(), "Path not found: D:\\x");
}

}  // namespace
}  // namespace quillon
