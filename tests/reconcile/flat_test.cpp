#include "reconcile/flat.h"

#include <gtest/gtest.h>

#include "platform/failure.h"

namespace quillon {
namespace {

TEST(Flat, BeginsWithoutFilesIdentifierOrNumber) {
    const Flat flat;
    EXPECT_TRUE(flat.GetNames().empty());
    EXPECT_EQ(flat.Size(), 0);
    EXPECT_EQ(flat.cdjid(), "");
    EXPECT_EQ(flat.TrackNumber(), 0);
}

TEST(Flat, CollectsFilesInTheirOrder) {
    Flat flat;
    flat.Add({.path = R"(D:\b)", .name = "b", .size = 1, .modified = {}});
    flat.Add({.path = R"(D:\a)", .name = "a", .size = 1, .modified = {}});
    ASSERT_EQ(flat.Size(), 2);
    EXPECT_EQ(flat.GetNames()[0].name, "b");
    EXPECT_EQ(flat.GetNames()[1].name, "a");
    flat.Class_Initialize();
    EXPECT_EQ(flat.Size(), 0);
}

TEST(Flat, KeepsAnIdentifier) {
    Flat flat;
    flat.cdjid("252E671073EC0001");
    EXPECT_EQ(flat.cdjid(), "252E671073EC0001");
}

TEST(Flat, NeverChangesItsTrackNumber) {
    Flat flat;
    flat.TrackNumber(7);
    EXPECT_EQ(flat.TrackNumber(), 0);
}

TEST(Flat, CountsIn16Bits) {
    Flat flat;
    for (int i = 0; i < 32767; ++i)
        flat.Add({});
    EXPECT_EQ(flat.Size(), 32767);
    flat.Add({});
    EXPECT_THROW(static_cast<void>(flat.Size()), Failure);
}

}  // namespace
}  // namespace quillon
