#include "platform/ascii.h"

#include <gtest/gtest.h>
#include <string>

namespace quillon {
namespace {

/// Of each size around that of a block.
template <typename Work>
void ForTextsOfEachSize(Work work) {
    const std::string all = "abcdefghijklmnopqrstuvwxyz";
    for (std::size_t size = 0; size <= all.size(); ++size)
        work(all.substr(0, size));
}

TEST(Ascii, TellsTextsApartThatDifferInOneByteAnywhere) {
    ForTextsOfEachSize([](const std::string& text) {
        EXPECT_TRUE(ascii::AreSame(text, std::string(text)));
        EXPECT_FALSE(ascii::AreSame(text, text + "x"));
        for (std::size_t at = 0; at < text.size(); ++at) {
            std::string other = text;
            other[at] = '\xE9';
            EXPECT_FALSE(ascii::AreSame(text, other)) << text << " at " << at;
            EXPECT_FALSE(ascii::EqualIgnoringCase(text, other)) << text << " at " << at;
        }
    });
}

TEST(Ascii, TakesATextBlockByBlockToItsLastByte) {
    ForTextsOfEachSize([](const std::string& text) {
        std::string taken;
        for (std::string_view left = text; !left.empty();) {
            const ascii::Block block = ascii::TakeBlock(left);
            for (std::size_t byte = 0; byte < ascii::BlockSize; ++byte)
                taken += static_cast<char>(block >> 8 * byte & 0xFFU);
        }
        EXPECT_EQ(taken.substr(0, text.size()), text);
        EXPECT_EQ(taken.find_first_not_of('\0', text.size()), std::string::npos);
    });
}

}  // namespace
}  // namespace quillon
