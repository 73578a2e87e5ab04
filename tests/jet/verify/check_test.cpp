#include "jet/check.h"

#include <array>
#include <cstdlib>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <memory>
#include <random>

#include "jet/error.h"
#include "tests/jet/storage/index/samples.h"
#include "tests/jet/verify/sample_file.h"
#include "tests/outside/shared_folder.h"
#include "tests/outside/structural_check.h"
#include "tests/outside/temporary_folder.h"

namespace jet {
namespace {

using storage::PageNumber;
using storage::PageType;
using test::SampleBytes;

struct Damage {
    const char* name;
    std::function<void(SampleBytes&)> apply;
    const char* told;    ///< part of the fault's text
    bool alone = false;  ///< the independent checker does not look there
};

void PrintTo(const Damage& damage, std::ostream* stream) {
    *stream << damage.name;
}

bool IsPlain(std::uint16_t flags) {
    return flags == 0;
}
bool IsMoved(std::uint16_t flags) {
    return flags == 0x4000;
}

/// The 12 bytes in a row that stand for a long value of this kind (the top bits of its length).
std::vector<std::pair<PageNumber, std::size_t>> LongHeaders(SampleBytes& file, std::uint8_t kind) {
    std::vector<std::pair<PageNumber, std::size_t>> found;
    for (const PageNumber page : file.DataPages()) {
        for (std::size_t slot = 0; slot < file.Get<std::uint16_t>(page, 12); ++slot) {
            if ((file.Get<std::uint16_t>(page, 14 + 2 * slot) & 0xC000) != 0) continue;
            const std::size_t start = file.RowStart(page, slot);
            const std::size_t end = slot == 0 ? storage::PageSize : file.RowStart(page, slot - 1);
            // One mask byte, the number of variable values, their starts from the last one on.
            const std::size_t value = start + file.Get<std::uint16_t>(page, end - 7);
            const bool present = (file.At(page, end - 1) & 0x08) != 0;
            if (present && (file.At(page, value + 3) & 0xC0) == kind)
                found.emplace_back(page, value);
        }
    }
    return found;
}

const std::vector<Damage>& Damages() {
    static const std::vector<Damage> all{
        {"RowCount", [](SampleBytes& f) { ++f.At(f.Definition(), 0x10); }, "the definition counts"},
        {"AutoNumber", [](SampleBytes& f) { f.Set<std::int32_t>(f.Definition(), 0x14, 5); },
         "the last auto-number is 5, but a row has"},
        {"FreeSpaceOfADataPage", [](SampleBytes& f) { f.At(f.DataPages()[0], 2) ^= 4; },
         "the free-space word is"},
        {"OwnerOfADataPage", [](SampleBytes& f) { f.Set<std::uint32_t>(f.DataPages()[0], 4, 3); },
         "is no sound data page|names another owner"},
        {"LostRow",
         [](SampleBytes& f) {
             const auto at = f.FindSlot(IsPlain);
             f.At(at.page, 14 + 2 * at.slot + 1) |= 0xC0;
         },
         "where no row is"},
        {"RowsOutOfOrder",
         [](SampleBytes& f) { f.Set<std::uint16_t>(f.DataPages()[0], 14, 0x0100); },
         "this is no sound data page"},
        {"UsedPageListedAsFree", [](SampleBytes& f) { f.SetMapBit(0x100, f.DataPages()[0], true); },
         "is in use and listed as free"},
        {"PageInTwoMaps",
         [](SampleBytes& f) {
             f.SetMapBit(f.Get<std::uint32_t>(f.Definition(), 0x37),
                         f.IndexPages(PageType::IndexLeaf)[0], true);
         },
         "is used twice"},
        {"PageWithRoomThatIsNotTheTables",
         [](SampleBytes& f) { f.SetMapBit(f.Get<std::uint32_t>(f.Definition(), 0x3B), 3, true); },
         "is listed as having room, but is not of the table"},
        {"MapOutsideTheFile",
         [](SampleBytes& f) { f.SetMapBit(f.Get<std::uint32_t>(f.Definition(), 0x37), 500, true); },
         "outside the file"},
        {"MapThatIsNone", [](SampleBytes& f) { f.At(f.Definition(), 0x37) = 200; },
         "there is no map at"},
        {"BeginningOfAMap",
         [](SampleBytes& f) {
             const auto map = f.Get<std::uint32_t>(f.Definition(), 0x3B);
             f.Set<PageNumber>(map >> 8, f.RowStart(map >> 8, map & 0xFF) + 1, 0x00FFFFF8);
         },
         "begins outside the file"},
        {"IndexMap",
         [](SampleBytes& f) {
             const auto map = f.Get<std::uint32_t>(f.Definition(), f.IndexOffset(0) + 34);
             const auto root = f.Get<PageNumber>(f.Definition(), f.IndexOffset(0) + 38);
             f.SetMapBit(map, root, false);
         },
         "the map of its pages"},
        {"KeyOfAnEntry",
         [](SampleBytes& f) { f.At(f.IndexPages(PageType::IndexLeaf).back(), 484) ^= 1; },
         "is not the one that the row's values make|out of order"},
        {"RowOfAnEntry",
         [](SampleBytes& f) {
             const PageNumber leaf = f.IndexPages(PageType::IndexLeaf)[0];
             std::size_t end = 0;
             while ((f.At(leaf, 27 + end / 8) >> (end % 8) & 1) == 0)
                 ++end;
             f.At(leaf, 480 + end - 1) = 250;
         },
         "where no row is"},
        {"FreeSpaceOfAnIndexPage",
         [](SampleBytes& f) { f.At(f.IndexPages(PageType::IndexLeaf)[0], 2) ^= 1; },
         "has a wrong free-space word"},
        {"LinkOfALeaf",
         [](SampleBytes& f) {
             const PageNumber root = f.IndexPages(PageType::IndexNode)[0];
             f.Set<PageNumber>(f.Get<PageNumber>(root, 20), 12, 0);
         },
         "is not linked with its neighbours"},
        {"EntryOfANode",
         [](SampleBytes& f) { f.At(f.IndexPages(PageType::IndexNode)[0], 483) ^= 1; },
         "does not know the last entry"},
        {"EntryMask", [](SampleBytes& f) { f.At(f.IndexPages(PageType::IndexLeaf)[0], 27) |= 2; },
         "has an impossible first entry"},
        {"TypeOfAnIndexPage",
         [](SampleBytes& f) { f.At(f.IndexPages(PageType::IndexLeaf)[0], 0) = 1; },
         "does not look like one"},
        {"TailOfANode",
         [](SampleBytes& f) {
             const PageNumber root = f.IndexPages(PageType::IndexNode)[0];
             f.Set<PageNumber>(root, 20, root);
         },
         "is used twice"},
        {"ContentOfAMovedRow",
         [](SampleBytes& f) {
             const auto at = f.FindSlot(IsMoved);
             f.At(at.page, f.RowStart(at.page, at.slot)) = 200;
         },
         "where none is"},
        {"ContentWithoutRow",
         [](SampleBytes& f) {
             const auto at = f.FindSlot(IsMoved);
             f.At(at.page, 14 + 2 * at.slot + 1) |= 0xC0;
         },
         "belongs to no row"},
        {"PieceOfALongValue",
         [](SampleBytes& f) {
             const auto [page, value] = LongHeaders(f, 0x40).at(0);
             f.At(page, value + 4) = 200;
         },
         "there is no piece of a long value"},
        {"PieceOfTwoLongValues",
         [](SampleBytes& f) {
             const auto headers = LongHeaders(f, 0x40);
             const auto pointer =
                 f.Get<std::uint32_t>(headers.at(0).first, headers.at(0).second + 4);
             f.Set(headers.at(1).first, headers.at(1).second + 4, pointer);
         },
         "belongs to another value too"},
        {"LengthOfALongValue",
         [](SampleBytes& f) {
             const auto [page, value] = LongHeaders(f, 0x00).at(0);
             ++f.At(page, value);
         },
         "the long value has"},
        {"FreeSpaceOfALongPage", [](SampleBytes& f) { f.At(f.LongPages()[0], 2) ^= 1; },
         "has a wrong free-space word"},
        {"VariableValues",
         [](SampleBytes& f) {
             const auto at = f.FindSlot(IsPlain);
             const std::size_t end =
                 at.slot == 0 ? storage::PageSize : f.RowStart(at.page, at.slot - 1);
             f.Set<std::uint16_t>(at.page, end - 5, 0x0FFF);
         },
         "the row's variable values"},
        {"ColumnNumber", [](SampleBytes& f) { f.At(f.Definition(), f.ColumnOffset(1) + 5) = 77; },
         "has an impossible number"},
        {"PlaceOfAFixedColumn",
         [](SampleBytes& f) { f.Set<std::uint16_t>(f.Definition(), f.ColumnOffset(2) + 21, 2); },
         "columns ID and Year lie in the same place"},
        {"NameOfAColumn", [](SampleBytes& f) { f.At(f.Definition(), f.NameOffset(2)) = 0; },
         "a column has an impossible name", true},
        {"NamesOfTwoColumns",
         [](SampleBytes& f) {
             // "Mine" becomes "Year".
             for (std::size_t i = 0; i < 8; ++i)
                 f.At(f.Definition(), f.NameOffset(4) + i) =
                     f.At(f.Definition(), f.NameOffset(2) + i);
         },
         "two columns have the name Year"},
        {"LengthOfAColumn",
         [](SampleBytes& f) { f.Set<std::uint16_t>(f.Definition(), f.ColumnOffset(1) + 23, 20); },
         "longer than it may be"},
        {"DefinitionInCircles",
         [](SampleBytes& f) { f.Set<PageNumber>(f.Definition(), 4, f.Definition()); },
         "is used twice"},
        {"LengthOfADefinition",
         [](SampleBytes& f) { f.Set<std::uint32_t>(f.Definition(), 8, 70000); },
         "the definition is longer than its pages"},
        {"UniqueIndexWithDuplicates",
         [](SampleBytes& f) {
             for (std::size_t index = 0; index < 3; ++index)
                 f.At(f.Definition(), f.IndexOffset(index) + 46) |= 0x01;
         },
         "the same values in this unique index"},
        {"RequiredIndexWithNulls",
         [](SampleBytes& f) {
             for (std::size_t index = 0; index < 3; ++index)
                 f.At(f.Definition(), f.IndexOffset(index) + 46) |= 0x08;
         },
         "is Null and must not be"},
        {"IndexThatIgnoresNullsWithNulls",
         [](SampleBytes& f) {
             for (std::size_t index = 0; index < 3; ++index)
                 f.At(f.Definition(), f.IndexOffset(index) + 46) |= 0x02;
         },
         "although all its columns are Null"},
        {"CatalogNamesNoDefinition",
         [](SampleBytes& f) {
             const PageNumber definition = f.Definition();
             f.At(definition, 0) = 1;
         },
         "is no page of a definition"}};
    return all;
}

class DamagedFile : public testing::TestWithParam<Damage> {};

TEST_P(DamagedFile, IsRecognised) {
    const outside::TemporaryFolder folder;
    const auto path = folder.Path() / "sample.mdb";
    test::MakeSample(path);
    SampleBytes bytes(path);
    GetParam().apply(bytes);
    bytes.Save(path);

    const CheckReport report = CheckFile(path);
    std::string all;
    for (const CheckFault& fault : report.faults)
        all += fault.text + "\n";
    const std::string told = GetParam().told;
    const std::size_t bar = told.find('|');
    EXPECT_TRUE(all.find(told.substr(0, bar)) != std::string::npos ||
                (bar != std::string::npos && all.find(told.substr(bar + 1)) != std::string::npos))
        << all;
    if (const auto other = outside::AskStructuralChecker(path); other && !GetParam().alone) {
        EXPECT_NE(other->status, 0) << other->output;
    }
}

INSTANTIATE_TEST_SUITE_P(InEachPart, DamagedFile, testing::ValuesIn(Damages()),
                         [](const auto& damage) { return std::string(damage.param.name); });

TEST(CheckFile, FindsNothingInAWholeFile) {
    const outside::TemporaryFolder folder;
    const auto path = folder.Path() / "sample.mdb";
    test::MakeSample(path);
    const CheckReport report = CheckFile(path);
    EXPECT_THAT(report.faults, testing::IsEmpty());
    EXPECT_EQ(report.tables, 5U);
    EXPECT_EQ(report.indexes, 10U);
    EXPECT_GT(report.rows, 390U);
    EXPECT_EQ(report.pages, std::filesystem::file_size(path) / storage::PageSize);
    if (const auto other = outside::AskStructuralChecker(path)) {
        EXPECT_EQ(other->status, 0) << other->output;
    }
}

TEST(CheckFile, ChangesNothing) {
    const outside::TemporaryFolder folder;
    const auto path = folder.Path() / "sample.mdb";
    test::MakeSample(path);
    SampleBytes before(path);
    CheckFile(path);
    SampleBytes after(path);
    EXPECT_EQ(before.All(), after.All());
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(folder.Path()), {}), 1);
}

ErrorKind KindOfFailure(const std::filesystem::path& path) {
    try {
        CheckFile(path);
    } catch (const Error& error) {
        return error.Kind();
    }
    return ErrorKind::NotSupported;
}

TEST(CheckFile, RefusesWhatIsNoReadableDatabase) {
    const outside::TemporaryFolder folder;
    const auto path = folder.Path() / "sample.mdb";
    EXPECT_EQ(KindOfFailure(path), ErrorKind::NotFound);
    test::MakeSample(path);
    SampleBytes bytes(path);
    bytes.At(0, 0x3E) ^= 1;
    bytes.Save(path);
    EXPECT_EQ(KindOfFailure(path), ErrorKind::Encrypted);
    bytes.At(0, 5) = 'X';
    bytes.Save(path);
    EXPECT_EQ(KindOfFailure(path), ErrorKind::NotADatabase);
}

TEST(CheckFile, SurvivesAnyDamage) {
    const outside::TemporaryFolder folder;
    const auto path = folder.Path() / "sample.mdb";
    test::MakeSample(path);
    const SampleBytes whole(path);
    std::mt19937 random(9);
    int recognised = 0;
    constexpr int Rounds = 300;
    for (int round = 0; round < Rounds; ++round) {
        SampleBytes bytes = whole;
        for (int flips = 0; flips < 4; ++flips) {
            const auto page = static_cast<PageNumber>(1 + random() % (bytes.PageCount() - 1));
            const std::size_t offset = random() % (flips % 2 == 0 ? 64 : storage::PageSize);
            bytes.At(page, offset) = static_cast<std::uint8_t>(random());
        }
        bytes.Save(path);
        try {
            recognised += CheckFile(path).faults.empty() ? 0 : 1;
        } catch (const Error& error) {
            EXPECT_EQ(error.Kind(), ErrorKind::Damaged) << error.what();
            ++recognised;
        }
    }
    EXPECT_GT(recognised, Rounds / 2);
}

class SampleFiles : public testing::TestWithParam<std::filesystem::path> {};

TEST_P(SampleFiles, GetTheVerdictOfTheOtherChecker) {
    const CheckReport report = CheckFile(GetParam());
    const auto other = outside::AskStructuralChecker(GetParam());
    ASSERT_TRUE(other);
    EXPECT_EQ(report.faults.empty(), other->status == 0) << other->output;
    std::array<std::size_t, 8> counts{};
    const std::size_t line = other->output.find(" pages, ");
    ASSERT_NE(line, std::string::npos);
    const std::size_t start = other->output.find_last_not_of("0123456789", line - 1) + 1;
    const std::string summary = other->output.substr(start);
    // NOLINTNEXTLINE(cert-err34-c): numbers that are missing stay 0 and fail below
    (void)std::sscanf(summary.c_str(),
                      "%zu pages, %zu tables, %zu rows on %zu data pages, %zu overflow rows, "
                      "%zu long values, %zu indexes, %zu entries",
                      &counts[0], &counts[1], &counts[2], &counts[3], &counts[4], &counts[5],
                      &counts[6], &counts[7]);
    EXPECT_EQ(report.pages, counts[0]) << summary;
    EXPECT_EQ(report.tables, counts[1]);
    EXPECT_EQ(report.rows, counts[2]);
    EXPECT_EQ(report.indexes, counts[6]);
    EXPECT_EQ(report.entries, counts[7]);
}

GTEST_ALLOW_UNINSTANTIATED_PARAMETERIZED_TEST(SampleFiles);
INSTANTIATE_TEST_SUITE_P(AllSamples, SampleFiles, testing::ValuesIn(outside::SampleDatabases()),
                         [](const auto& sample) { return test::SampleName(sample.param); });

}  // namespace
}  // namespace jet
