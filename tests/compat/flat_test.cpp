#include "compat/flat.h"

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
    flat.Add({.Name = R"(D:\b)", .FileDate = {}});
    flat.Add({.Name = R"(D:\a)", .FileDate = {}});
    ASSERT_EQ(flat.Size(), 2);
    EXPECT_EQ(flat.GetNames()[0].Name, R"(D:\b)");
    EXPECT_EQ(flat.GetNames()[1].Name, R"(D:\a)");
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
