// A run over a database of which one byte is wrong refuses it as it is, or leaves it whole.
#include <algorithm>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <iostream>
#include <map>
#include <optional>

#include "jet/check.h"
#include "jet/storage/database_file.h"
#include "jukebox/database_needs.h"
#include "tests/app/built_files.h"
#include "tests/app/program_test.h"
#include "tests/outside/command.h"
#include "tests/outside/mutants.h"
#include "tests/support/sound_file.h"

namespace quillon {
namespace {

namespace fs = std::filesystem;

using jet::storage::Row;

class DamagedDatabase : public ProgramTest {
  protected:
    DamagedDatabase() {
        for (const char* const album : {"Abba/Arrival", "Abba/Gold", "Blur/Blur", "Cream/Wheels"}) {
            const fs::path folder = MakeFolder("Music/" + std::string(album));
            for (int track = 1; track <= 9; ++track) {
                const std::string song = "Song " + std::to_string(track);
                support::RawTag tag;
                tag.song = song;
                std::ofstream(folder / ("0" + std::to_string(track) + " - " + song + ".mp3"))
                    << support::SoundFile(tag);
            }
        }
        CallProgram({"init", Path("shelf"), "--music", Path("Music")});
        Run();
        Exec("UPDATE Tracks SET TimesPlayed = ID * 3, Rating1 = ID, Notes = Title & ' is good'");
        Exec("UPDATE Albums SET TimesPlayed = ID");
        Run();
        whole_ = Read("shelf/jukebox.mdb");
        tracks_ = Tracks().size();
        albums_ = Albums().size();
    }

    fs::path Database() const { return Path("shelf/jukebox.mdb"); }

    int Run() const {
        const std::string host = outside::ShellQuoted(Path("shelf").string());
        const auto result =
            outside::RunCommand("'" + built::Program() + "' run --quiet --host " + host + " 2>&1");
        for (const auto& entry : fs::directory_iterator(Path("shelf")))
            if (entry.path().string().find("_Copy Dated_") != std::string::npos)
                fs::remove_all(entry.path());
        return result.status;
    }

    void Exec(const std::string& sql) const {
        const ProgramResult result = CallProgram({"db", "exec", Database(), sql});
        ASSERT_EQ(result.status, 0) << result.err;
    }

    bool HasSidecars() const {
        return fs::exists(Path("shelf/jukebox.ldb")) ||
               fs::exists(Path("shelf/jukebox.mdb.journal")) ||
               fs::exists(Path("shelf/jukebox.mdb.journal-new"));
    }

    using Keepsakes = std::map<std::string, std::vector<jet::Value>>;

    /// What the rows of a table have that no run can find again, by what names the row. Columns by
    /// position: their names may be damaged.
    Keepsakes KeepsakesOf(const std::string& table, std::size_t name,
                          const std::vector<std::size_t>& columns) const {
        Keepsakes keepsakes;
        auto file = jet::storage::DatabaseFile::Open(Database(), jet::OpenMode::ReadOnly);
        file.OpenTable(table).Scan([&](jet::storage::RowId, Row&& row) {
            std::vector<jet::Value> values;
            for (const std::size_t column : columns)
                values.push_back(row.at(column));
            keepsakes[std::get<std::string>(row.at(name))] = values;
        });
        return keepsakes;
    }
    Keepsakes Tracks() const { return KeepsakesOf("Tracks", 7, {13, 17}); }
    Keepsakes Albums() const { return KeepsakesOf("Albums", 1, {20}); }

    /// Lets a run go over a mutant; what it did wrong, "" for nothing.
    std::string WrongWith(const std::string& mutant, int& status) const {
        Write("shelf/jukebox.mdb", mutant);
        // As far as that can be read: in a type that was changed, values are others already.
        std::optional<std::pair<Keepsakes, Keepsakes>> before;
        try {
            before.emplace(Tracks(), Albums());
        } catch (const std::exception&) {
            before.reset();
        }
        status = Run();
        if (HasSidecars()) return "sidecars are left";
        if (status == 2) return Read("shelf/jukebox.mdb") == mutant ? "" : "refused and changed";
        const jet::NeededTables needed{NeededTableNames()};
        for (const jet::CheckFault& fault : jet::CheckFile(Database()).faults)
            if (needed.AreConcernedBy(fault)) return fault.text;
        if (!before) return "could not be read, and was not refused";
        const Keepsakes tracks = Tracks(), albums = Albums();
        if (tracks.size() < tracks_ || albums.size() < albums_) return "rows are lost";
        if (!std::ranges::includes(tracks, before->first) ||
            !std::ranges::includes(albums, before->second))
            return "play counts are lost";
        return "";
    }

    std::string whole_;
    std::size_t tracks_ = 0, albums_ = 0;
};

TEST_F(DamagedDatabase, IsRefusedAsItIsOrLeftWhole) {
    int refused = 0, done = 0;
    for (std::uint32_t seed = 0; seed < outside::MutantCount(120); ++seed) {
        const outside::Mutant mutant = outside::MutantOf(whole_, seed);
        int status = 0;
        EXPECT_EQ(WrongWith(mutant.bytes, status), "") << mutant.where << ", status " << status;
        ++(status == 2 ? refused : done);
    }
    std::cout << refused << " refused, " << done << " done\n";
    EXPECT_GT(refused, done / 2);
    EXPECT_GT(done, 0);
}

}  // namespace
}  // namespace quillon
