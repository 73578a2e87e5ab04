#pragma once

#include <gtest/gtest.h>

// Tests of what only the files of a POSIX system have are no tests elsewhere: rights for owner,
// group and others, links that anybody may make, pipes, a limit for the size of files, any byte in
// names, letter case included.
#ifdef _WIN32
#define POSIX_TEST_F(suite, name)                   \
    class suite##_##name##_OfPosix : public suite { \
        [[maybe_unused]] void Body();               \
    };                                              \
    void suite##_##name##_OfPosix::Body()
#define POSIX_TEST(suite, name)                             \
    class suite##_##name##_OfPosix : public testing::Test { \
        [[maybe_unused]] void Body();                       \
    };                                                      \
    void suite##_##name##_OfPosix::Body()
#else
#define POSIX_TEST_F TEST_F
#define POSIX_TEST TEST
#endif
