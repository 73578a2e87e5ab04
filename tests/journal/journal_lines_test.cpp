#include "app/journal/journal_lines.h"

#include <gtest/gtest.h>
#include <limits>

namespace quillon {
namespace {

using namespace std::chrono_literals;

FileContent Content() {
    return {.size = 128,
            .hash = 0xfedcba9876543210,
            .bytes = std::string("TAG\0\xff\r\n", 7),
            .keptAs = "Removed/2026-11-21_07-13-05/D/a.mp3",
            .modified = MakeDateTime(2026, 11, 21, 7, 13, 5)};
}

std::vector<ChangeRecord> AllRecords() {
    const DateTime half{46347.123456789};
    return {
        RunStarted{"2026-11-21_07-13-05", "1.1.0", "", "2026-11-20_07-13-05-2"},
        ModeChosen{"Reconcile"},
        PhaseStarted{"Check tags", 1234ms},
        RowChange{RowChange::Kind::Added,
                  "Albums",
                  {{"ID", std::int64_t{5}}},
                  {{"Artist", Null(), std::string("\"Ünï\"\n<b>\x1b")},
                   {"Is New", Null(), true},
                   {"Added", Null(), half}}},
        RowChange{RowChange::Kind::Changed,
                  "Tracks",
                  {{"ID", std::int64_t{-7}}, {"Name", std::string()}},
                  {{"Length", 1.0, 0.1}, {"Number", std::int64_t{1}, Null()}}},
        RowChange{RowChange::Kind::Removed,
                  "Genres",
                  {},
                  {{"Image", std::string("\xff\x00", 2), Null()}}},
        DateReplaced{"Differences", "Update \"Time\"", half, {46348.5}, 100'000},
        RowsSaved{},
        FileChange{.number = 1,
                   .kind = FileChange::Kind::Written,
                   .path = "D:\\a.pla",
                   .before = Content(),
                   .after = FileContent{}},
        FileChange{.number = 2,
                   .kind = FileChange::Kind::EndWritten,
                   .path = "D:\\a.mp3",
                   .position = 4'000'000'000,
                   .before = Content(),
                   .after = Content()},
        FileChange{.number = 3, .kind = FileChange::Kind::FolderDeleted, .path = "D:\\a"},
        FileChange{
            .number = 4, .kind = FileChange::Kind::Moved, .path = "D:\\a", .target = "D:\\b"},
        FileChange{.number = 5,
                   .kind = FileChange::Kind::Moved,
                   .path = "D:\\b",
                   .target = "D:\\a",
                   .takesBack = "2026-11-21_07-13-05#4",
                   .group = 3},
        FileChangeFailed{4, "Permission denied: D:\\b"},
        LogLine{true, "line\nline"},
        RunEnded{"aborted", 3, true, 99ms},
        WriteLeft{"2026-11-21_04-30-01", 3},
        RunEnded{"completed", 0, false, 99ms, 7, 1},
    };
}

TEST(JournalLines, EveryRecordComesBackFromItsLine) {
    for (const ChangeRecord& record : AllRecords()) {
        const std::string line = ToLine(record);
        EXPECT_EQ(FromLine(line), record) << line;
    }
}

TEST(JournalLines, LinesThatAreMadeOneAfterTheOtherAreThoseOfEachRecord) {
    JournalLines lines;
    for (int round = 0; round < 2; ++round)
        for (const ChangeRecord& record : AllRecords())
            EXPECT_EQ(lines.Of(record), ToLine(record));
}

TEST(JournalLines, DatesOfOneRowAreToldApart) {
    const DateTime one{46347.5}, other{46348.5}, zero{0.0}, belowZero{-0.0};
    const RowChange row{RowChange::Kind::Added,
                        "Tracks",
                        {},
                        {{"A", Null(), one},
                         {"B", Null(), zero},
                         {"C", Null(), belowZero},
                         {"D", Null(), one},
                         {"E", Null(), other},
                         {"F", Null(), zero}}};
    EXPECT_EQ(FromLine(ToLine(row)), ChangeRecord(row));
    EXPECT_NE(ToLine(row).find(R"("days":-0.0)"), std::string::npos);
}

TEST(JournalLines, EveryKindOfFileChangeHasANameOfItsOwn) {
    for (int kind = 0; kind <= static_cast<int>(FileChange::Kind::PieceReplaced); ++kind) {
        const FileChange change{.kind = static_cast<FileChange::Kind>(kind), .path = "D:\\a"};
        EXPECT_EQ(std::get<FileChange>(FromLine(ToLine(change))).kind, change.kind);
    }
}

TEST(JournalLines, ARecordIsOneLineWhateverItsTexts) {
    for (const ChangeRecord& record : AllRecords()) {
        const std::string line = ToLine(record);
        EXPECT_EQ(line.find_first_of("\r\n"), std::string::npos) << line;
    }
}

TEST(JournalLines, ALineSaysWhatHappenedInWords) {
    EXPECT_EQ(ToLine(RowChange{RowChange::Kind::Changed,
                               "Tracks",
                               {{"ID", std::int64_t{5}}},
                               {{"Number", std::int64_t{1}, std::int64_t{2}}}}),
              R"({"record":"row","change":"changed","table":"Tracks","key":{"ID":5},)"
              R"("fields":{"Number":{"before":1,"after":2}}})");
    EXPECT_EQ(ToLine(FileChange{.number = 4,
                                .kind = FileChange::Kind::Moved,
                                .path = "D:\\a.mp3",
                                .target = "D:\\b.mp3"}),
              R"({"record":"file","number":4,"change":"moved","path":"D:\\a.mp3",)"
              R"("target":"D:\\b.mp3"})");
}

TEST(JournalLines, ARowThatIsKnownByAllItsFieldsHasThemOnce) {
    const RowChange row{
        RowChange::Kind::Removed,
        "Differences",
        {{"Field", std::string("Genre")}, {"Value", Null()}, {"Number", std::int64_t{5}}},
        {{"Field", std::string("Genre"), Null()}, {"Number", std::int64_t{5}, Null()}}};
    const std::string line = ToLine(row);
    EXPECT_EQ(line, R"({"record":"row","change":"removed","table":"Differences",)"
                    R"("key":{"Field":"Genre","Value":null,"Number":5}})");
    EXPECT_EQ(FromLine(line), ChangeRecord(row));
}

TEST(JournalLines, ARowWithMoreThanItsKeyHasAllFields) {
    for (const RowChange& row :
         {RowChange{RowChange::Kind::Added,
                    "T",
                    {{"A", std::int64_t{1}}},
                    {{"A", Null(), std::int64_t{1}}, {"B", Null(), true}}},
          RowChange{RowChange::Kind::Added, "T", {{"A", std::int64_t{1}}}, {}},
          RowChange{RowChange::Kind::Changed, "T", {}, {}}}) {
        const std::string line = ToLine(row);
        EXPECT_NE(line.find("\"fields\""), std::string::npos) << line;
        EXPECT_EQ(FromLine(line), ChangeRecord(row)) << line;
    }
}

TEST(JournalLines, WholeAndFractionalNumbersStayWhatTheyAre) {
    const RowChange row{RowChange::Kind::Added,
                        "T",
                        {},
                        {{"A", Null(), 2.0},
                         {"B", Null(), std::int64_t{2}},
                         {"C", Null(), std::numeric_limits<std::int64_t>::min()},
                         {"D", Null(), -std::numeric_limits<double>::infinity()},
                         {"E", Null(), std::numeric_limits<double>::denorm_min()}}};
    EXPECT_EQ(FromLine(ToLine(row)), ChangeRecord(row));
}

TEST(JournalLines, ADateThatNoTextCanHoldStaysExact) {
    const RowChange row{RowChange::Kind::Added, "T", {}, {{"A", Null(), DateTime{1e9}}}};
    EXPECT_EQ(FromLine(ToLine(row)), ChangeRecord(row));
}

TEST(JournalLines, ALineThatIsCutAnywhereIsDamaged) {
    for (const ChangeRecord& record : AllRecords()) {
        const std::string line = ToLine(record);
        for (std::size_t length = 0; length < line.size(); ++length)
            EXPECT_THROW(FromLine(line.substr(0, length)), DamagedLine) << line.substr(0, length);
    }
}

TEST(JournalLines, WhatIsNoRecordIsDamaged) {
    for (const char* line :
         {"", "[]", "5", "{}", R"({"record":"song"})", R"({"record":5})", R"({"record":"file"})",
          R"({"record":"file","number":1,"change":"eaten","path":"a"})",
          R"({"record":"file","number":1,"change":"moved","path":{"bytes":"0"}})",
          R"({"record":"file","number":1,"change":"moved","path":{"bytes":"zz"}})",
          R"({"record":"file","number":-1,"change":"moved","path":[]})",
          R"({"record":"row","change":"added","table":"T","key":[],"fields":5})",
          R"({"record":"log","error":"yes","text":"x"})"})
        EXPECT_THROW(FromLine(line), DamagedLine) << line;
}

TEST(JournalLines, NamesThatALaterVersionMayAddArePassedOver) {
    EXPECT_EQ(FromLine(R"({"record":"saved","by":"somebody"})"), ChangeRecord(RowsSaved()));
}

}  // namespace
}  // namespace quillon
