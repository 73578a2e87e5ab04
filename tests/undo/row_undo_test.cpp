#include "undo/row_undo.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <stdexcept>
#include <string>

#include "jukebox/jukebox_database.h"
#include "platform/failure.h"
#include "platform/portable/jet_database.h"
#include "tests/outside/temporary_folder.h"
#include "tests/support/database_rows.h"
#include "tests/support/open_database.h"
#include "tests/undo/row_undo_fixture.h"

namespace quillon {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using RowKind = RowChange::Kind;

RowChange Changed(std::int64_t id, std::vector<FieldChange> fields) {
    return {.table = "Tracks", .key = {{"ID", id}}, .fields = std::move(fields)};
}

/// All that is said of a row that comes or goes.
std::vector<FieldChange> Whole(std::int64_t id, const std::string& title, bool isAdded) {
    std::vector<FieldChange> fields;
    const std::vector<std::pair<std::string, Value>> values{{"ID", id},
                                                            {"CDJID", "C1"},
                                                            {"Title", title},
                                                            {"SoundFile", "D:\\" + title},
                                                            {"TimesPlayed", std::int64_t{7}}};
    for (const auto& [name, value] : values)
        fields.push_back(isAdded ? FieldChange{name, Null(), value}
                                 : FieldChange{name, value, Null()});
    return fields;
}
RowChange Added(std::int64_t id, const std::string& title) {
    return {.kind = RowKind::Added,
            .table = "Tracks",
            .key = {{"ID", id}},
            .fields = Whole(id, title, true)};
}
RowChange Removed(std::int64_t id, const std::string& title) {
    return {.kind = RowKind::Removed,
            .table = "Tracks",
            .key = {{"ID", id}},
            .fields = Whole(id, title, false)};
}

TEST_F(RowUndoTest, PutsChangedFieldsBackAndLeavesTheOthers) {
    AddTrack(5, "Dawn");
    connection_->Execute("UPDATE Tracks SET TimesPlayed=9 WHERE ID=5");
    const Records run{Changed(5, {{"Title", "dawn", "Dawn"}}), RowsSaved()};
    EXPECT_THAT(Undo({run}), ElementsAre(Outcome{}));
    EXPECT_THAT(Tracks(), ElementsAre("5|dawn|D:\\Dawn|9"));
    EXPECT_THAT(Undo({run}), ElementsAre(Outcome{.state = Outcome::State::WasSo}));
}

TEST_F(RowUndoTest, BringsRemovedRowsBackUnderTheirNumbers) {
    AddTrack(9, "Later");
    const Records run{Removed(5, "Dawn"), RowsSaved()};
    EXPECT_THAT(Undo({run}), ElementsAre(Outcome{}));
    EXPECT_THAT(Tracks(), ElementsAre("5|Dawn|D:\\Dawn|7", "9|Later|D:\\Later|7"));
    EXPECT_EQ(connection_->NextNumber("Tracks"), 10);
    EXPECT_THAT(Undo({run}), ElementsAre(Outcome{.state = Outcome::State::WasSo}));
    connection_.reset();
    EXPECT_EQ(support::StructuralFaults(file_), "");
}

TEST_F(RowUndoTest, RemovesAddedRows) {
    AddTrack(5, "Dawn");
    const Records run{Added(5, "Dawn"), RowsSaved()};
    EXPECT_THAT(Undo({run}), ElementsAre(Outcome{}));
    EXPECT_THAT(Tracks(), IsEmpty());
    EXPECT_THAT(Undo({run}), ElementsAre(Outcome{.state = Outcome::State::WasSo}));
}

TEST_F(RowUndoTest, RefusesWhatAnotherProgramHasChanged) {
    AddTrack(5, "Dusk");
    AddTrack(6, "Noon");
    connection_->Execute("UPDATE Tracks SET TimesPlayed=8 WHERE ID=6");
    AddTrack(7, "Night");
    const Records run{Changed(5, {{"Title", "dawn", "Dawn"}}), Added(6, "Noon"),
                      Removed(7, "Morning"), Changed(8, {{"Title", "a", "b"}}), RowsSaved()};
    const std::vector<Outcome> outcomes = Undo({run});
    EXPECT_THAT(outcomes, ElementsAre(Outcome::Refusal("Title has been changed since, to \"Dusk\""),
                                      Outcome::Refusal("TimesPlayed has been changed since, to 8"),
                                      Outcome::Refusal("there is a row with its key again"),
                                      Outcome::Refusal("it has been removed since")));
    EXPECT_THAT(Tracks(),
                ElementsAre("5|Dusk|D:\\Dusk|7", "6|Noon|D:\\Noon|8", "7|Night|D:\\Night|7"));
}

TEST_F(RowUndoTest, TakesSeveralRunsTogether) {
    AddTrack(5, "third");
    AddTrack(6, "stays");
    const Records first{Changed(5, {{"Title", "first", "second"}}), Removed(4, "gone"),
                        Added(7, "for a while"), RowsSaved()};
    const Records second{Changed(5, {{"Title", "second", "third"}}), Removed(7, "for a while"),
                         Changed(6, {{"TimesPlayed", std::int64_t{6}, std::int64_t{7}}}),
                         Changed(6, {{"TimesPlayed", std::int64_t{7}, std::int64_t{6}}}),
                         RowsSaved()};
    connection_->Execute("UPDATE Tracks SET TimesPlayed=6 WHERE ID=6");
    EXPECT_THAT(Undo({first, second}), ElementsAre(Outcome{}, Outcome{}));
    EXPECT_THAT(Tracks(),
                ElementsAre("4|gone|D:\\gone|7", "5|first|D:\\third|7", "6|stays|D:\\stays|6"));
}

TEST_F(RowUndoTest, FollowsARowWhoseKeyChanges) {
    AddTrack(8, "Dawn");
    const Records run{Changed(5, {{"ID", std::int64_t{5}, std::int64_t{8}}}),
                      Changed(8, {{"Title", "dawn", "Dawn"}}), RowsSaved()};
    EXPECT_THAT(Undo({run}), ElementsAre(Outcome{}));
    EXPECT_THAT(Tracks(), ElementsAre("5|dawn|D:\\Dawn|7"));
    EXPECT_THAT(Undo({run}), ElementsAre(Outcome{.state = Outcome::State::WasSo}));
}

TEST_F(RowUndoTest, WaitsForAKeyThatBecomesFree) {
    AddTrack(6, "first");
    AddTrack(7, "second");
    const Records run{
        Changed(6, {{"ID", std::int64_t{6}, std::int64_t{7}}, {"Title", "b", "second"}}),
        Changed(5, {{"ID", std::int64_t{5}, std::int64_t{6}}, {"Title", "a", "first"}}),
        RowsSaved()};
    EXPECT_THAT(Undo({run}), ElementsAre(Outcome{}, Outcome{}));
    EXPECT_THAT(Tracks(), ElementsAre("5|a|D:\\first|7", "6|b|D:\\second|7"));
}

TEST_F(RowUndoTest, GivesRowsThatHaveSwappedTheirUniqueValuesTheirOwnBack) {
    connection_->Execute("CREATE TABLE Unique1 (ID LONG PRIMARY KEY, Name TEXT(12))");
    connection_->Execute("CREATE UNIQUE INDEX ByName ON Unique1 (Name)");
    connection_->Execute("INSERT INTO Unique1 (ID, Name) VALUES (1, \"Dawn\")");
    connection_->Execute("INSERT INTO Unique1 (ID, Name) VALUES (2, \"Dusk\")");
    connection_->Execute("INSERT INTO Unique1 (ID, Name) VALUES (4, \"third\")");
    const auto changed = [](std::int64_t id, std::vector<FieldChange> fields) {
        return RowChange{.table = "Unique1", .key = {{"ID", id}}, .fields = std::move(fields)};
    };
    const Records names{changed(1, {{"Name", "Dusk", "x"}}), changed(2, {{"Name", "Dawn", "Dusk"}}),
                        changed(1, {{"Name", "x", "Dawn"}}), RowsSaved()};
    EXPECT_THAT(Undo({names}), ElementsAre(Outcome{}, Outcome{}));
    EXPECT_THAT(support::Rows(*connection_, "SELECT ID, Name FROM Unique1 ORDER BY ID"),
                ElementsAre("1|Dusk", "2|Dawn", "4|third"));
}

TEST_F(RowUndoTest, KeepsARowsOwnValuesWhereAnotherRowHasTakenItsOldKey) {
    AddTrack(5, "Dawn");
    AddTrack(4, "new since");
    const Records run{
        Changed(4, {{"ID", std::int64_t{4}, std::int64_t{5}}, {"Title", "dawn", "Dawn"}}),
        RowsSaved()};
    const std::vector<Outcome> outcomes = Undo({run});
    ASSERT_EQ(outcomes.size(), 1U);
    EXPECT_EQ(outcomes.front().state, Outcome::State::Refused);
    EXPECT_THAT(Tracks(), ElementsAre("4|new since|D:\\new since|7", "5|Dawn|D:\\Dawn|7"));
}

TEST_F(RowUndoTest, TakesWhatAKilledRunHasOrHasNotSaved) {
    const Records run{Changed(5, {{"Title", "a", "b"}}), RowsSaved(),
                      Changed(5, {{"Title", "b", "c"}})};
    for (const char* const title : {"b", "c"}) {
        connection_->Execute("DELETE * FROM Tracks");
        AddTrack(5, title);
        EXPECT_THAT(Undo({run}), ElementsAre(Outcome{})) << title;
        EXPECT_THAT(Tracks().front(), HasSubstr("5|a|"));
    }
}

TEST_F(RowUndoTest, GoesOnBehindAnUndoThatWasKilled) {
    const Records run{Changed(5, {{"Title", "a", "b"}}), RowsSaved()};
    const Records undo{Changed(5, {{"Title", "b", "a"}})};
    for (const char* const title : {"a", "b"}) {
        connection_->Execute("DELETE * FROM Tracks");
        AddTrack(5, title);
        Undo({run, undo});
        EXPECT_THAT(Tracks().front(), HasSubstr("5|a|")) << title;
    }
}

TEST_F(RowUndoTest, LeavesRowsOfFilesThatStay) {
    AddTrack(5, "Dawn");
    const Records run{Changed(5, {{"SoundFile", "D:\\old", "D:\\Dawn"}}), RowsSaved()};
    const auto stays = [](std::string_view path) { return path == "D:\\Dawn"; };
    EXPECT_THAT(Undo({run}, stays), ElementsAre(Outcome::Refusal("its file stays as it is")));
    EXPECT_THAT(Tracks(), ElementsAre("5|Dawn|D:\\Dawn|7"));
}

TEST_F(RowUndoTest, LeavesTheAlbumOfATrackThatStays) {
    const auto added = [](std::int64_t id, const std::string& cdjid) {
        return RowChange{.kind = RowKind::Added,
                         .table = "Albums",
                         .key = {{"ID", id}},
                         .fields = {{"ID", Null(), id}, {"CDJID", Null(), cdjid}}};
    };
    connection_->Execute("INSERT INTO Albums (ID, CDJID) VALUES (1, \"c1\")");
    connection_->Execute("INSERT INTO Albums (ID, CDJID) VALUES (2, \"C2\")");
    AddTrack(5, "Dawn");
    AddTrack(6, "Noon");
    const Records run{added(1, "c1"), added(2, "C2"), Added(5, "Dawn"), Added(6, "Noon"),
                      RowsSaved()};
    connection_->Execute("UPDATE Tracks SET TimesPlayed=8 WHERE ID=5");
    EXPECT_THAT(
        Undo({run}),
        ElementsAre(Outcome::Refusal("tracks of it stay as they are"), Outcome{},
                    Outcome::Refusal("TimesPlayed has been changed since, to 8"), Outcome{}));
    EXPECT_THAT(support::Rows(*connection_, "SELECT ID, CDJID FROM Albums"), ElementsAre("1|c1"));

    connection_->Execute("UPDATE Tracks SET TimesPlayed=7 WHERE ID=5");
    EXPECT_THAT(Undo({run}), Contains(Outcome{}).Times(2));
    EXPECT_THAT(support::Rows(*connection_, "SELECT ID FROM Albums"), IsEmpty());
}

TEST_F(RowUndoTest, LeavesAnIdentifierThatTracksGoOnToHave) {
    connection_->Execute("INSERT INTO Albums (ID, CDJID, Title) VALUES (1, \"C1\", \"new\")");
    AddTrack(5, "Dawn");
    const auto changed = [](std::vector<FieldChange> fields) {
        return RowChange{
            .table = "Albums", .key = {{"ID", std::int64_t{1}}}, .fields = std::move(fields)};
    };
    const Records run{changed({{"CDJID", Null(), "C1"}}), RowsSaved()};
    EXPECT_THAT(Undo({run}), ElementsAre(Outcome::Refusal("tracks of it stay as they are")));
    const Records other{changed({{"Title", "old", "new"}}), RowsSaved()};
    EXPECT_THAT(Undo({other}), ElementsAre(Outcome{}));
    EXPECT_THAT(support::Rows(*connection_, "SELECT CDJID, Title FROM Albums"),
                ElementsAre("C1|old"));
}

TEST_F(RowUndoTest, CountsEqualRowsOfATableWithoutAKey) {
    const auto change = [](RowKind kind, const char* text) {
        const FieldChange field = kind == RowKind::Added ? FieldChange{"Name", Null(), text}
                                                         : FieldChange{"Name", text, Null()};
        return RowChange{
            .kind = kind, .table = "NoKey", .key = {{"Name", text}}, .fields = {field}};
    };
    connection_->Execute("CREATE TABLE NoKey (Name TEXT(20))");
    for (const char* const name : {"same", "same", "same"})
        connection_->Execute("INSERT INTO NoKey (Name) VALUES (\"" + std::string(name) + "\")");
    const Records run{change(RowKind::Added, "same"), change(RowKind::Added, "same"),
                      change(RowKind::Removed, "gone"), RowsSaved()};
    EXPECT_THAT(Undo({run}), testing::Each(Outcome{}));
    EXPECT_THAT(support::Rows(*connection_, "SELECT Name FROM NoKey ORDER BY Name"),
                ElementsAre("gone", "same"));
}

TEST_F(RowUndoTest, ChangesNothingWhenTheWholeIsCutOff) {
    AddTrack(5, "Dawn");
    AddTrack(6, "Noon");
    NetRows net;
    Add(net, {Changed(5, {{"Title", "dawn", "Dawn"}}), Changed(6, {{"Title", "noon", "Noon"}})});
    const std::vector<NetRow> rows = net.Take();
    RowUndo undo(*connection_, rows);
    int calls = 0;
    const Attempt stopping = [&](const std::function<void()>& work) {
        work();
        if (++calls == 2) throw std::runtime_error("the disk is full");
        return std::string();
    };
    const auto carryOut = [&] { undo.CarryOut(stopping); };
    EXPECT_THROW(JetDatabaseProvider::Together(*connection_, carryOut), std::runtime_error);
    EXPECT_THAT(Tracks(), ElementsAre("5|Dawn|D:\\Dawn|7", "6|Noon|D:\\Noon|7"));
}

}  // namespace
}  // namespace quillon
