#include "changes/file_content.h"

#include <gtest/gtest.h>
#include <string>

#include "tests/support/fake_files.h"

namespace quillon {
namespace {

TEST(FileContent, OfALargeFileIsToldByItsHash) {
    fakes::Calls calls;
    fakes::FakeFiles files(calls);
    std::string bytes(2'500'000, 'a');
    const FileContent content{.size = bytes.size(), .hash = ContentHash(bytes)};
    files.AddFile(R"(D:\a)", bytes);
    EXPECT_TRUE(Holds(files, R"(D:\a)", content));
    bytes.back() = 'b';
    files.AddFile(R"(D:\a)", bytes);
    EXPECT_FALSE(Holds(files, R"(D:\a)", content));
    EXPECT_EQ(BytesOf(files, R"(D:\a)", 1'500'000, 1'200'000), bytes.substr(1'500'000));
    EXPECT_EQ(BytesOf(files, R"(D:\a)", 1'500'000, 10), std::string(10, 'a'));
}

}  // namespace
}  // namespace quillon
