#pragma once

#include <gtest/gtest.h>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "driver/library_form.h"
#include "tests/support/fakes.h"

namespace quillon {

/// Names of all procedures that phases and modes are made of.
inline const std::vector<std::pair<ProcedureName, std::string>>& ProcedureNames() {
    static const std::vector<std::pair<ProcedureName, std::string>> names = {
        {&Procedures::BuildORsRecordset, "BuildORsRecordset"},
        {&Procedures::PopulateGenre, "PopulateGenre"},
        {&Procedures::CapturePlaylists, "CapturePlaylists"},
        {&Procedures::RemoveDuplicates, "RemoveDuplicates"},
        {&Procedures::VerifyID3Tags, "VerifyID3Tags"},
        {&Procedures::RefreshDatabase, "RefreshDatabase"},
        {&Procedures::PopulateSpinnerTracks, "PopulateSpinnerTracks"},
        {&Procedures::PopulateSpinnerArtist, "PopulateSpinnerArtist"},
        {&Procedures::RefreshPlaylist, "RefreshPlaylist"},
        {&Procedures::CreateNewPlaylists, "CreateNewPlaylists"},
        {&Procedures::RefreshAlbumCovers, "RefreshAlbumCovers"},
        {&Procedures::OutputReconcileTable, "OutputReconcileTable"},
        {&Procedures::UpdateDatabaseFromID3, "UpdateDatabaseFromID3"},
        {&Procedures::AddFilesToLibrary, "AddFilesToLibrary"},
        {&Procedures::WriteID3, "WriteID3"},
        {&Procedures::BuildAlbumPicker, "BuildAlbumPicker"},
        {&Procedures::ConvertPlaToM3u, "ConvertPlaToM3u"},
        {&Procedures::MakeRemote, "MakeRemote"},
        {&Procedures::ConvertM3uToPla, "ConvertM3uToPla"},
    };
    return names;
}

/// A form among fakes, with procedures that only note their name: "Run RemoveDuplicates". The
/// world holds a library, a database file and both playlist folders.
class FormFixture : public ::testing::Test {
  protected:
    using Run = quillon::Run;  // not the one of ::testing::Test

    FormFixture() {
        for (const auto& [member, name] : ProcedureNames())
            Note(member, name);
        host.Set("LibraryRoot", R"(D:\Music)");
        host.Set("Nirvis_CDJ_DB", R"(D:\Data\cdj.mdb)");
        host.Set("PlayListPath", R"(C:\Lists\)");
        host.Set("PlayListPath2", R"(C:\M3u\)");
        world.files.AddFolder(R"(D:\Music)");
        world.files.AddFile(R"(D:\Data\cdj.mdb)", "rows");
        world.files.AddFile(R"(C:\Lists\a.pla)");
        world.files.AddFile(R"(C:\M3u\a.m3u)");
        world.database.tables["SpinnerGenre"] = {{"GenreID", "Genre"}, {}};
    }

    /// Lets a procedure note its name and then do something.
    void Note(ProcedureName member, const std::string& name, Procedures::Work then = {}) {
        procedures.*member = [this, name, then = std::move(then)](Run& context) {
            world.calls.Note("Run " + name);
            if (then) then(context);
        };
    }

    void SwitchOn(const std::vector<std::string>& keys) {
        for (const std::string& key : keys)
            host.Set(key, "1");
    }

    RunOutcome Load() {
        LibraryForm form(run, world.database, "1.2.3", procedures);
        return form.Form_Load();
    }

    /// As if no run had been before.
    void RemoveBackups() {
        for (const std::string& path : world.files.Everything()) {
            if (path.find("_Copy Dated_") == std::string::npos) continue;
            if (world.files.FolderExists(path)) world.files.DeleteFolder(path);
            if (world.files.FileExists(path)) world.files.DeleteFile(path);
        }
        world.calls.Forget();
    }

    using Words = std::vector<std::string_view>;
    std::vector<std::string> Calls(const Words& beginnings) const {
        return world.calls.Of(beginnings);
    }

    static std::vector<std::string> DatabaseBackup() {
        return {R"(CopyFile D:\Data\cdj.mdb -> D:\Data\cdj.mdb_Copy Dated_11152026_53855_AM_)"};
    }
    static std::vector<std::string> ListsBackup() {
        return {R"(CopyFolder C:\Lists -> C:\Lists_Copy Dated_11152026_53855_AM_)"};
    }
    static std::vector<std::string> M3uBackup() {
        return {R"(CopyFolder C:\M3u -> C:\M3u_Copy Dated_11152026_53855_AM_)"};
    }

    fakes::FakeWorld world;
    fakes::FakeHost& host = world.host;
    Run& run = world.run;
    Procedures procedures;
};

}  // namespace quillon
