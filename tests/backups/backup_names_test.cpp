#include "backups/backup_names.h"

#include <gtest/gtest.h>

#include "backups/backups.h"

namespace quillon {
namespace {

TEST(BackupMark, IsReadAsTheTimeThatItWasMadeOf) {
    for (const DateTime time :
         {MakeDateTime(2026, 11, 15, 5, 38, 55), MakeDateTime(2026, 1, 2, 15, 4, 5),
          MakeDateTime(2024, 2, 29, 12, 0, 0), MakeDateTime(2026, 12, 31, 0, 0, 1),
          MakeDateTime(2026, 10, 20), MakeDateTime(2026, 3, 4)}) {
        const auto mark = ReadBackupMark(BackupStamp(time));
        ASSERT_TRUE(mark) << BackupStamp(time);
        EXPECT_EQ(mark->times.first, time);
        EXPECT_EQ(mark->times.last, time);
        EXPECT_EQ(mark->number, 1U);
    }
}

TEST(BackupMark, HasANumberBehindTheStamp) {
    EXPECT_EQ(ReadBackupMark("11152026_53855_AM_2")->number, 2U);
    EXPECT_EQ(ReadBackupMark("11152026_12")->number, 12U);
    EXPECT_EQ(ReadBackupMark("11152026_12")->times.first, MakeDateTime(2026, 11, 15));
}

TEST(BackupMark, MayMeanADayOfTwoMonths) {
    const auto mark = ReadBackupMark("1112026_40000_AM");
    ASSERT_TRUE(mark);
    EXPECT_EQ(mark->times.first, MakeDateTime(2026, 1, 11, 4));
    EXPECT_EQ(mark->times.last, MakeDateTime(2026, 11, 1, 4));
    EXPECT_EQ(ReadBackupMark("1012026_40000_AM")->times.first, MakeDateTime(2026, 10, 1, 4));
    EXPECT_EQ(ReadBackupMark("1312026_40000_AM")->times.last, MakeDateTime(2026, 1, 31, 4));
}

TEST(BackupMark, IsNothingElse) {
    for (const char* const text : {"",
                                   "_",
                                   "yesterday",
                                   "11152026_53855_AM_",
                                   "11152026_53855_AM_1",
                                   "11152026_53855_AM_02",
                                   "11152026_53855_AM_x",
                                   "11152026_x",
                                   "11152026_53855_XM",
                                   "11152026_053855_AM",
                                   "11152026_133855_AM",
                                   "11152026_56055_AM",
                                   "02302026_53855_AM",
                                   "13152026_53855_AM",
                                   "2302026_53855_AM",
                                   "11152026_53855_am",
                                   "-1152026_53855_AM",
                                   "1_53855_AM",
                                   "11152026_120000_AM",
                                   "11152026__2",
                                   "99999999999999_53855_AM"}) {
        EXPECT_FALSE(ReadBackupMark(text)) << text;
    }
}

TEST(MarkOfCopy, IsThatOfAnExactNameAlone) {
    EXPECT_EQ(MarkOfCopy("cdj.mdb_Copy Dated_11152026_53855_AM_", "cdj.mdb"), "11152026_53855_AM");
    EXPECT_EQ(MarkOfCopy("CDJ.mdb_Copy Dated_11152026_53855_AM_2_", "cdj.mdb"),
              "11152026_53855_AM_2");
    for (const char* const name :
         {"cdj.mdb", "cdj.mdb_Copy Dated_", "cdj.mdb_Copy Dated__",
          "cdj.mdb_Copy Dated_11152026_53855_AM", "cdj.mdb_copy dated_11152026_53855_AM_",
          "cdj.mdb_Copy Dated_11152026_53855_AM_old", "cdj.mdb_Copy Dated_11152026_53855_AM_.mdb",
          "my cdj.mdb_Copy Dated_11152026_53855_AM_", "cdj_Copy Dated_11152026_53855_AM_",
          "cdj.mdb.playlists_Copy Dated_11152026_53855_AM_"}) {
        EXPECT_EQ(MarkOfCopy(name, "cdj.mdb"), "") << name;
    }
}

}  // namespace
}  // namespace quillon
