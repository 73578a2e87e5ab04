#include "jet/dialect/token.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "jet/error.h"

namespace jet::dialect {

namespace {

using ::testing::HasSubstr;

std::string Kinds(std::string_view statement) {
    std::string kinds;
    for (const Token& token : Tokenize(statement).tokens)
        kinds += "wntodps."[static_cast<std::size_t>(token.kind)];
    return kinds;
}

std::string TextIn(std::string_view statement) {
    return std::get<std::string>(Tokenize(statement).literals.front());
}

std::string Fault(std::string_view statement) {
    try {
        Tokenize(statement);
    } catch (const Error& error) {
        EXPECT_EQ(error.Kind(), ErrorKind::Syntax);
        return error.what();
    }
    return "";
}

std::string SignatureOf(std::string_view statement) {
    return Signature(Tokenize(statement));
}

TEST(Tokenize, TellsWordsNamesLiteralsAndSymbolsApart) {
    EXPECT_EQ(Kinds("SELECT [Group]  FROM t"), "wnww.");
    EXPECT_EQ(Kinds("First(Spinner.Genre)AS x"), "wswswsww.");
    EXPECT_EQ(Kinds("a<>\"\""), "wst.");
    EXPECT_EQ(Kinds("a>=1.5e3 'x' #1/2/2026# `n`"), "wsotdn.");
    EXPECT_EQ(Kinds(""), ".");
}

TEST(Tokenize, TakesADoubledQuoteForTheQuoteItself) {
    EXPECT_EQ(TextIn(R"("say ""hi""")"), "say \"hi\"");
    EXPECT_EQ(TextIn("'it''s'"), "it's");
    EXPECT_EQ(TextIn(R"("it's")"), "it's");
    EXPECT_EQ(TextIn(R"("")"), "");
    EXPECT_EQ(TextIn(R"("""")"), "\"");
}

TEST(Tokenize, NamesThePlaceOfWhatHasNoEnd) {
    EXPECT_THAT(Fault("SELECT 'abc"), HasSubstr("column 8 near ''abc'"));
    EXPECT_THAT(Fault("a [b"), HasSubstr("column 3"));
    EXPECT_THAT(Fault("a=#1/2"), HasSubstr("column 3"));
    EXPECT_THAT(Fault("a=#13/32/2026#"), HasSubstr("no date"));
    EXPECT_THAT(Fault("a ? b"), HasSubstr("near '?'"));
}

TEST(Tokenize, ReadsNumbers) {
    EXPECT_EQ(std::get<std::int64_t>(Tokenize("12").literals[0]), 12);
    EXPECT_EQ(std::get<double>(Tokenize(".5").literals[0]), 0.5);
    EXPECT_EQ(std::get<double>(Tokenize("1e2").literals[0]), 100);
    EXPECT_EQ(std::get<double>(Tokenize("99999999999999999999").literals[0]), 1e20);
}

TEST(Signature, LeavesOutComparedValues) {
    EXPECT_EQ(SignatureOf("ID=5"), SignatureOf("ID = 12345"));
    EXPECT_EQ(SignatureOf("a='x' AND b=#1/2/2026#"), SignatureOf("a=\"y\" AND b=#1/3/2026#"));
    EXPECT_EQ(SignatureOf("INSERT INTO t VALUES (1, 2)"),
              SignatureOf("INSERT INTO t VALUES (3, 4)"));
}

TEST(Signature, KeepsWhatMakesADifferentStatement) {
    EXPECT_NE(SignatureOf("Left(a, 4)"), SignatureOf("Left(a, 5)"));
    EXPECT_NE(SignatureOf("SELECT TOP 1 a FROM t"), SignatureOf("SELECT TOP 2 a FROM t"));
    EXPECT_NE(SignatureOf("a Like '%x'"), SignatureOf("a Like '%x%'"));
    EXPECT_NE(SignatureOf("[True]"), SignatureOf("True"));
    EXPECT_NE(SignatureOf("a b"), SignatureOf("ab"));
}

TEST(IsSuffixPattern, WantsTextBehindTheOnlyLeadingSign) {
    EXPECT_TRUE(IsSuffixPattern("%a"));
    EXPECT_TRUE(IsSuffixPattern("%50% off.mp3"));
    EXPECT_FALSE(IsSuffixPattern("%"));
    EXPECT_FALSE(IsSuffixPattern("%a%"));
    EXPECT_FALSE(IsSuffixPattern("a%"));
    EXPECT_FALSE(IsSuffixPattern(""));
}

}  // namespace

}  // namespace jet::dialect
