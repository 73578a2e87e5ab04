#include "app/table_printer.h"

#include <gtest/gtest.h>
#include <sstream>

namespace quillon {
namespace {

TableCell Text(std::string text) {
    return {.text = std::move(text)};
}
TableCell Number(std::string text) {
    return {.text = std::move(text), .isNumber = true};
}
TableCell NullCell() {
    return {.text = "<null>", .isNumber = false, .isNull = true};
}

TEST(TablePrinter, AlignsTextsLeftAndNumbersRight) {
    std::ostringstream out;
    TablePrinter table(out, {"ID", "Title"});
    table.AddRow({Number("1"), Text("Dawn")});
    table.AddRow({Number("120"), Text("A long title")});
    table.Finish();
    EXPECT_EQ(out.str(),
              " ID  Title\n"
              "---  ------------\n"
              "  1  Dawn\n"
              "120  A long title\n"
              "(2 rows)\n");
}

TEST(TablePrinter, CountsColumnsAndNotBytes) {
    std::ostringstream out;
    TablePrinter table(out, {"Artist", "Y"});
    table.AddRow({Text("Sängerin"), Text("x")});
    table.AddRow({Text("音楽"), Text("y")});
    table.Finish();
    EXPECT_EQ(out.str(),
              "Artist    Y\n"
              "--------  -\n"
              "Sängerin  x\n"
              "音楽      y\n"
              "(2 rows)\n");
}

TEST(TablePrinter, ANullDoesNotMakeAColumnOfNumbersOneOfTexts) {
    std::ostringstream out;
    TablePrinter table(out, {"Minutes"});
    table.AddRow({NullCell()});
    table.AddRow({Number("4")});
    table.Finish();
    EXPECT_EQ(out.str(), "Minutes\n-------\n <null>\n      4\n(2 rows)\n");
}

TEST(TablePrinter, PrintsTheHeaderOfAnEmptyResult) {
    std::ostringstream out;
    TablePrinter table(out, {"A", "B"});
    table.Finish();
    EXPECT_EQ(out.str(), "A  B\n-  -\n(0 rows)\n");
}

TEST(TablePrinter, KeepsARowOnOneLine) {
    std::ostringstream out;
    TablePrinter table(out, {"Notes"});
    table.AddRow({Text("one\r\ntwo\x1B[0m")});
    table.Finish();
    EXPECT_EQ(out.str(), "Notes\n------------\none  two [0m\n(1 row)\n");
}

TEST(TablePrinter, PrintsAVeryLongTextWhole) {
    std::ostringstream out;
    TablePrinter table(out, {"Notes", "N"});
    const std::string text(500, 'x');
    table.AddRow({Text(text), Number("1")});
    table.Finish();
    EXPECT_NE(out.str().find(text + "  1\n"), std::string::npos);
    EXPECT_NE(out.str().find("\n" + std::string(60, '-') + "  -\n"), std::string::npos);
}

TEST(TablePrinter, PrintsRowsOfALongResultAsTheyCome) {
    std::ostringstream out;
    TablePrinter table(out, {"N"});
    for (int i = 0; i < 10'000; ++i)
        table.AddRow({Number(std::to_string(i))});
    EXPECT_NE(out.str().find("\n9999\n"), std::string::npos) << "before Finish()";
    table.Finish();
    EXPECT_TRUE(out.str().ends_with("\n9999\n(10000 rows)\n"));
}

TEST(TablePrinter, KeepsColumnsBesideALongTextWhenToldTo) {
    std::ostringstream out;
    TablePrinter table(out, {"Key", "Value", "Source", "Remark"},
                       {.indent = 2, .widestColumn = 6, .countsRows = false, .breaksLines = true});
    table.AddRow({Text("A"), Text("1"), Text("file"), Text("")});
    table.AddRow({Text("B"), Text("D:\\Music"), Text("file"), Text("odd")});
    table.AddRow({Text("C"), Text("D:\\Music"), Text(""), Text("")});
    table.Finish();
    EXPECT_EQ(out.str(),
              "  Key  Value   Source  Remark\n"
              "  ---  ------  ------  ------\n"
              "  A    1       file\n"
              "  B    D:\\Music\n"
              "               file    odd\n"
              "  C    D:\\Music\n");
}

}  // namespace
}  // namespace quillon
