#pragma once

#include <filesystem>
#include <functional>
#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "jukebox/jukebox_database.h"
#include "platform/failure.h"
#include "platform/portable/jet_database.h"
#include "tests/outside/temporary_folder.h"
#include "tests/support/database_rows.h"
#include "tests/support/open_database.h"
#include "undo/row_undo.h"

namespace quillon {

/// A library's database, and runs that are to be taken back.
class RowUndoTest : public ::testing::Test {
  protected:
    using Records = std::vector<ChangeRecord>;

    RowUndoTest() {
        CreateJukeboxDatabase(file_);
        connection_ = support::OpenDatabase(file_);
    }

    void AddTrack(std::int64_t id, const std::string& title) {
        connection_->Execute(
            "INSERT INTO Tracks (ID, CDJID, Title, SoundFile, TimesPlayed) "
            "VALUES (" +
            std::to_string(id) + ", \"C1\", \"" + title + "\", \"D:\\" + title + "\", 7)");
    }
    std::vector<std::string> Tracks() {
        return support::Rows(*connection_,
                             "SELECT ID, Title, SoundFile, TimesPlayed FROM Tracks ORDER BY ID");
    }

    /// Takes runs back; the steps' outcomes.
    std::vector<Outcome> Undo(
        const std::vector<Records>& runs,
        const RowUndo::StaysAt& stays = [](std::string_view) { return false; }) {
        NetRows net;
        for (const Records& run : runs)
            Add(net, run);
        const std::vector<NetRow> rows = net.Take();
        RowUndo undo(*connection_, rows, net.Dates());
        undo.HoldBack(stays);
        JetDatabaseProvider::Together(*connection_, [&] { undo.CarryOut(Tried); });
        std::vector<Outcome> outcomes;
        for (const RowUndo::Step& step : undo.Steps())
            outcomes.push_back(step.outcome);
        dates_.clear();
        for (const DateUndo& date : undo.Dates())
            dates_.push_back(date.outcome);
        return outcomes;
    }
    /// Likewise; the outcomes for replaced dates.
    std::vector<Outcome> UndoDates(const std::vector<Records>& runs) {
        Undo(runs);
        return dates_;
    }

    static std::string Tried(const std::function<void()>& work) {
        try {
            work();
        } catch (const Failure& failure) {
            return failure.what();
        }
        return "";
    }

    /// All records of a run.
    static void Add(NetRows& net, const Records& records) {
        net.StartRun();
        for (const ChangeRecord& record : records)
            net.Add(record);
    }

    outside::TemporaryFolder folder_;
    std::filesystem::path file_ = folder_ / "jukebox.mdb";
    std::unique_ptr<Connection> connection_;
    std::vector<Outcome> dates_;
};

}  // namespace quillon
