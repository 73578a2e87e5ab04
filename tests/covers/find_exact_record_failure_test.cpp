// A look-up among covers can only fail for want of memory, so that is what happens here: in this
// test program large allocations can be refused.
#include <cstdint>
#include <cstdlib>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <new>

#include "covers/cover_set.h"
#include "tests/support/fakes.h"

namespace {

/// No larger one is granted.
std::size_t& LargestAllocation() {
    static std::size_t size = SIZE_MAX;
    return size;
}

}  // namespace

void* operator new(std::size_t size) {
    const bool granted = size <= LargestAllocation();
    void* const memory = granted ? std::malloc(size > 0 ? size : 1) : nullptr;
    if (memory == nullptr) throw std::bad_alloc();
    return memory;
}

void* operator new(std::size_t size, const std::nothrow_t& /*tag*/) noexcept {
    return std::malloc(size > 0 ? size : 1);
}

void operator delete(void* memory) noexcept {
    std::free(memory);
}

void operator delete(void* memory, std::size_t) noexcept {
    std::free(memory);
}

namespace quillon {
namespace {

TEST(FindExactRecord, LogsAFailureAndFindsNothing) {
    fakes::FakeWorld world;
    const std::string name(100'000, 'x');
    CoverSet covers;
    covers.Add(name, "D:\\Covers\\" + name);
    LargestAllocation() = name.size() / 2;
    const Cover* const found = findExactRecord(world.run, covers, name);
    LargestAllocation() = SIZE_MAX;
    EXPECT_EQ(found, nullptr);
    EXPECT_THAT(world.host.log, ::testing::ElementsAre(
                                    "Quillon: Find Exact Record Error: Line 0 Not enough memory"));
    EXPECT_NE(findExactRecord(world.run, covers, name), nullptr);
}

}  // namespace
}  // namespace quillon
