#include <gtest/gtest.h>
#include <string>

#include "jet/storage/format/values.h"

namespace jet::storage {
namespace {

using namespace std::string_literals;

TEST(UsualText, ComesBackFromTheStorageAsItIs) {
    for (const std::string& text :
         {""s, "Plain"s, "Île"s, "\xC2\x80\xDF\xBF"s, "Ж и т"s, "\xE0\xA0\x80\xED\x9F\xBF"s,
          "\xEE\x80\x80\xEF\xBF\xBF"s, "日本語"s}) {
        EXPECT_TRUE(IsUsualText(text)) << text;
        for (const bool mayCompress : {true, false})
            EXPECT_EQ(DecodeText(EncodeText(ToUtf16(text), mayCompress, true)), text);
    }
}

TEST(UsualText, IsNothingThatTakesALookAtEachUnit) {
    for (const std::string& text : {"a\0b"s, "\x80"s, "\xC3"s, "\xC1\x81"s, "\xE0\x9F\xBF"s,
                                    "\xE6\x97"s, "\xED\xA0\x80"s, "\xF0\x9F\x8E\xB5"s, "\xFF"s})
        EXPECT_FALSE(IsUsualText(text));
}

}  // namespace
}  // namespace jet::storage
