// Files that cannot be opened say why; damaged ones never do worse than that.
#include <algorithm>
#include <gtest/gtest.h>
#include <optional>
#include <random>
#include <string>

#include "jet/error.h"
#include "jet/storage/database_file.h"
#include "jet/storage/header.h"
#include "tests/jet/storage/faulty_files.h"
#include "tests/jet/storage/random_rows.h"
#include "tests/jet/storage/schemas.h"
#include "tests/jet/storage/test_files.h"
#include "tests/outside/density.h"

namespace jet::storage::test {

namespace {

class BadFiles : public testing::Test {
  protected:
    BadFiles() {
        DatabaseFile::Create(path_, BothTables());
        auto file = DatabaseFile::Open(path_, OpenMode::ReadWrite);
        for (const std::string& name : file.TableNames()) {
            ModelledTable model(file.OpenTable(name), 5);
            model.Change(150);
        }
        file.Commit();
        content_ = outside::ContentOf(path_);
    }

    /// Expects an error of a kind, whose text has the file's name and some words.
    void ExpectRefused(ErrorKind kind, const std::string& words) {
        for (const OpenMode mode : {OpenMode::ReadOnly, OpenMode::ReadWrite}) {
            try {
                DatabaseFile::Open(path_, mode);
                ADD_FAILURE() << "opened";
            } catch (const Error& error) {
                const std::string what = error.what();
                EXPECT_EQ(error.Kind(), kind) << what;
                EXPECT_NE(what.find(words), std::string::npos) << what;
                EXPECT_NE(what.find(path_.string()), std::string::npos) << what;
                EXPECT_EQ(what.back(), '.') << what;
            }
            EXPECT_FALSE(std::filesystem::exists(folder_ / "bad.ldb"));
        }
    }

    void Change(std::size_t offset, const std::string& bytes) {
        std::string changed = content_;
        changed.replace(offset, bytes.size(), bytes);
        WriteFile(path_, changed);
    }

    TemporaryFolder folder_;
    std::filesystem::path path_ = folder_ / "bad.mdb";
    std::string content_;
};

TEST_F(BadFiles, AMissingFileIsNotFound) {
    std::filesystem::remove(path_);
    ExpectRefused(ErrorKind::NotFound, "No such file");
}

TEST_F(BadFiles, AnEmptyFileIsNoDatabase) {
    WriteFile(path_, "");
    ExpectRefused(ErrorKind::NotADatabase, "is empty");
}

TEST_F(BadFiles, ATextIsNoDatabase) {
    WriteFile(path_, "Not a database at all, but long enough to look like one, perhaps.");
    ExpectRefused(ErrorKind::NotADatabase, "not an Access database");
    WriteFile(path_, "short");
    ExpectRefused(ErrorKind::NotADatabase, "not an Access database");
}

TEST_F(BadFiles, OtherVersionsAreNamed) {
    Change(0x14, std::string(1, '\0'));
    ExpectRefused(ErrorKind::NotADatabase, "Access 97");
    Change(0x14, "\x02");
    ExpectRefused(ErrorKind::NotADatabase, "Access 2007");
    Change(0x04, "Standard ACE DB");
    ExpectRefused(ErrorKind::NotADatabase, "another version");
}

TEST_F(BadFiles, EncodedPagesAndPasswordsAreNamed) {
    Change(0x3E, std::string(1, static_cast<char>(content_[0x3E] ^ 0x11)));
    ExpectRefused(ErrorKind::Encrypted, "encoded");
    Change(0x42, std::string(1, static_cast<char>(content_[0x42] ^ 'p')));
    ExpectRefused(ErrorKind::Encrypted, "password");
}

TEST_F(BadFiles, ACutFileIsDamaged) {
    WriteFile(path_, content_.substr(0, 100));
    ExpectRefused(ErrorKind::Damaged, "ends within its header");
    WriteFile(path_, content_.substr(0, content_.size() - 1000));
    ExpectRefused(ErrorKind::Damaged, "not a whole number of pages");
    WriteFile(path_, content_.substr(0, content_.size() - 20 * PageSize));
    ExpectRefused(ErrorKind::Damaged, "ends too early");
    WriteFile(path_, content_.substr(0, 10 * PageSize));
    ExpectRefused(ErrorKind::Damaged, "is damaged");
}

TEST_F(BadFiles, ADamagedCatalogIsNamed) {
    Change(2 * PageSize, std::string(200, '\xEE'));
    ExpectRefused(ErrorKind::Damaged, "catalog");
}

TEST_F(BadFiles, AFolderIsNoDatabase) {
    std::filesystem::remove(path_);
    std::filesystem::create_directory(path_);
    EXPECT_THROW(DatabaseFile::Open(path_, OpenMode::ReadOnly), Error);
}

TEST_F(BadFiles, CreateRefusesAnExistingFile) {
    EXPECT_THROW(DatabaseFile::Create(path_, BothTables()), Error);
    EXPECT_EQ(outside::ContentOf(path_), content_);
}

TEST_F(BadFiles, CreateLeavesNothingWhereItFails) {
    TableDefinition table = TracksTable();
    table.columns.push_back(table.columns.front());
    const auto path = folder_ / "never.mdb";
    EXPECT_THROW(DatabaseFile::Create(path, std::vector<TableDefinition>{table}), Error);
    EXPECT_FALSE(std::filesystem::exists(path));
    EXPECT_FALSE(std::filesystem::exists(path.string() + ".new"));
    EXPECT_THROW(DatabaseFile::Create(folder_ / "no/such/folder.mdb", BothTables()), Error);
}

/// Does everything that can be done with a file; any of it may end with an Error.
void UseAll(const std::filesystem::path& path) {
    std::optional<DatabaseFile> file;
    try {
        file.emplace(DatabaseFile::Open(path, OpenMode::ReadWrite));
    } catch (const Error&) {
        return;
    }
    for (const std::string& name : file->TableNames()) {
        Table& table = file->OpenTable(name);
        std::vector<RowId> ids;
        try {
            table.Scan([&ids](RowId id, Row&&) { ids.push_back(id); });
        } catch (const Error& error) {
            EXPECT_EQ(error.Kind(), ErrorKind::Damaged) << error.what();
        }
        RandomRows random(3);
        const auto attempt = [](auto action) {
            try {
                action();
            } catch (const Error&) {
                return;
            }
        };
        for (std::size_t i = 0; i < 6; ++i) {
            attempt([&] { table.Insert(random.RowFor(table.Definition())); });
            if (ids.empty()) continue;
            const RowId id = ids[random.Below(ids.size())];
            const std::size_t column = random.Below(table.Definition().columns.size());
            const std::vector<FieldChange> changes{
                {column, random.ValueFor(table.Definition().columns[column])}};
            attempt([&] { table.Read(id); });
            attempt([&] { table.Update(id, changes); });
            attempt([&] { table.Delete(ids[random.Below(ids.size())]); });
        }
    }
    try {
        file->Commit();
    } catch (const Error&) {
        return;
    }
}

TEST_F(BadFiles, RandomDamageNeverDoesWorseThanAnError) {
    std::mt19937 random(11);
    for (std::size_t round = 0; round < 400; round += outside::StepUnderSanitizers(4)) {
        std::string damaged = content_;
        // Beginnings of pages hold the structure; most damage goes there.
        for (std::size_t i = 0; i < 1 + random() % 6; ++i) {
            const std::size_t page = random() % (damaged.size() / PageSize);
            const std::size_t offset = random() % 2 == 0 ? random() % 100 : random() % PageSize;
            for (std::size_t j = 0; j < 1 + random() % 4 && offset + j < PageSize; ++j) {
                damaged[page * PageSize + offset + j] =
                    random() % 3 == 0 ? '\xFF' : static_cast<char>(random());
            }
        }
        WriteFile(path_, damaged);
        UseAll(path_);
    }
}

TEST_F(BadFiles, ExchangedPagesNeverDoWorseThanAnError) {
    std::mt19937 random(12);
    const std::size_t pages = content_.size() / PageSize;
    for (std::size_t round = 0; round < 150; round += outside::StepUnderSanitizers(4)) {
        std::string damaged = content_;
        const std::size_t from = random() % pages, to = 1 + random() % (pages - 1);
        damaged.replace(to * PageSize, PageSize, content_, from * PageSize, PageSize);
        WriteFile(path_, damaged);
        UseAll(path_);
    }
}

TEST(ALeftJournal, IsDiscardedWhenItIsIncompleteOrOfAnotherState) {
    const TemporaryFolder folder;
    const auto path = folder / "j.mdb";
    DatabaseFile::Create(path, BothTables());
    const std::string empty = outside::ContentOf(path);
    const auto journal = path.string() + ".journal";

    // A commit that fails after its journal is complete leaves it.
    const auto files = std::make_shared<FaultyFileSystem>(1);
    std::string complete;
    for (std::size_t moment = 0; complete.empty(); ++moment) {
        WriteFile(path, empty);
        std::filesystem::remove(journal + "-new");
        try {
            auto file = DatabaseFile::Open(path, OpenMode::ReadWrite, files);
            ModelledTable model(file.OpenTable("Tracks"), 1);
            model.InsertOne();
            files->FailAfter(moment, FaultyFileSystem::Fault::PowerLoss);
            file.Commit();
        } catch (const Error&) {
            files->Repair();
        }
        if (std::filesystem::exists(journal)) complete = outside::ContentOf(journal);
        ASSERT_LT(moment, 100U);
    }
    const auto rowsWith = [&](const std::string& database, const std::string& journalContent) {
        WriteFile(path, database);
        WriteFile(journal, journalContent);
        const std::size_t readOnly =
            RowsOf(DatabaseFile::Open(path, OpenMode::ReadOnly).OpenTable("Tracks")).size();
        EXPECT_EQ(outside::ContentOf(journal), journalContent);
        EXPECT_EQ(outside::ContentOf(path), database);
        const std::size_t rows =
            RowsOf(DatabaseFile::Open(path, OpenMode::ReadWrite).OpenTable("Tracks")).size();
        EXPECT_EQ(readOnly, rows);
        EXPECT_FALSE(std::filesystem::exists(journal));
        EXPECT_EQ(FaultsOf(path, true), "");
        return rows;
    };
    EXPECT_EQ(rowsWith(empty, complete), 1U);
    EXPECT_EQ(rowsWith(empty, complete.substr(0, complete.size() - 1)), 0U);
    EXPECT_EQ(rowsWith(empty, complete.substr(0, complete.size() / 2)), 0U);
    EXPECT_EQ(rowsWith(empty, ""), 0U);
    std::string flipped = complete;
    flipped[flipped.size() / 2] = static_cast<char>(flipped[flipped.size() / 2] ^ 4);
    EXPECT_EQ(rowsWith(empty, flipped), 0U);

    // The database has been put back from a later backup.
    WriteFile(path, empty);
    std::filesystem::remove(journal);
    for (int i = 0; i < 3; ++i) {
        auto file = DatabaseFile::Open(path, OpenMode::ReadWrite);
        ModelledTable(file.OpenTable("Tracks"), static_cast<std::uint32_t>(i)).InsertOne();
    }
    EXPECT_EQ(rowsWith(outside::ContentOf(path), complete), 3U);
}

}  // namespace

}  // namespace jet::storage::test
