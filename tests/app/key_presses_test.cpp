#include "app/views/key_presses.h"

#include <gtest/gtest.h>

namespace quillon {
namespace {

TEST(KeyPresses, AreWhatAPersonTypes) {
    KeyPresses keys;
    EXPECT_EQ(keys.Typed("aA x1"), "aAx1");
    EXPECT_EQ(keys.Typed(""), "");
    EXPECT_EQ(keys.Typed("\r\n\t\x01\x7F"), "") << "control characters are nothing typed";
    EXPECT_EQ(keys.Typed("\xC3\xA4"), "") << "nor are letters beyond ASCII";
}

TEST(KeyPresses, AreNoneWhereAKeySendsASequence) {
    for (const char* const sequence : {"\x1B[A", "\x1BOA", "\x1B[1;5A", "\x1BO2A", "\x1B[[A",
                                       "\x1B[3~", "\x1B[200~", "\x1B\x1B[A",
                                       "\x1B"
                                       "a"}) {
        KeyPresses keys;
        EXPECT_EQ(keys.Typed(sequence), "") << sequence + 1;
        EXPECT_EQ(keys.Typed("a"), "a") << "behind " << sequence + 1;
    }
}

TEST(KeyPresses, RecogniseASequenceThatArrivesInPieces) {
    KeyPresses keys;
    EXPECT_EQ(keys.Typed("x\x1B"), "x");
    EXPECT_EQ(keys.Typed("["), "");
    EXPECT_EQ(keys.Typed("1;"), "");
    EXPECT_EQ(keys.Typed("5"), "");
    EXPECT_EQ(keys.Typed("Aa"), "a");
}

}  // namespace
}  // namespace quillon
