#include "playlists/playlist_writer.h"

#include "database/sql.h"
#include "platform/basic_text.h"
#include "playlists/pla_line.h"
#include "run/log.h"
#include "run/name_cleaning.h"
#include "run/run.h"

namespace quillon {

PlaylistWriter::PlaylistWriter(Run& run, GeneratedBy generator)
    : run_(run),
      mark_(generator == GeneratedBy::Genre ? "AutoGenre" : "AutoArtist"),
      playlists_(run.connection->OpenTable("Playlists")) {}

void PlaylistWriter::Begin(std::string_view genreOrArtist) {
    End();
    name_ = NoPlaylistNasties(genreOrArtist);
    part_ = count_ = 0;
    if (name_.empty()) {
        WriteLog(run_, LogSource,
                 "No playlist for " + std::string(genreOrArtist) +
                     ": nothing of the name can be in a file's name");
        return;
    }
    OpenFile(name_);
}

void PlaylistWriter::WriteTrack(std::string_view cdjid, std::int32_t track) {
    if (name_.empty()) return;
    if (count_ > run_.settings.MaxPlaylistLength) {
        End();
        ++part_;
        count_ = 0;
        OpenFile(PartName());
    }
    WriteLine(PlaLine(cdjid, track));
}

void PlaylistWriter::WriteAlbum(std::string_view cdjid) {
    if (!name_.empty()) WriteLine(PlaAlbumLine(cdjid));
}

void PlaylistWriter::End() {
    if (!file_) return;
    file_->Close();
    file_.reset();
    ++run_.counts.playlistsWritten;
}

void PlaylistWriter::OpenFile(const std::string& name) {
    file_ = run_.files.CreateText(run_.settings.PlayListPath + name + std::string(PlaExtension));
    file_->WriteLine(PlaHeader);
    RecordFile(name);
}

void PlaylistWriter::RecordFile(const std::string& name) {
    playlists_->Filter("Filepath = " + FilterQuoted(run_.settings.PlayListPath) +
                       " AND Filename=" + FilterQuoted(name));
    if (!playlists_->IsEmpty()) {
        playlists_->Set(mark_, true);
        playlists_->Update();
        return;
    }
    playlists_->AddNew();
    playlists_->Set("FilePath", run_.settings.PlayListPath);
    playlists_->Set("Filename", name);
    playlists_->Set("AutoGenre", mark_ == "AutoGenre");
    playlists_->Set("AutoArtist", mark_ == "AutoArtist");
    playlists_->Set("Type", std::string(PlaExtension));
    playlists_->Set("DeviceCode", "");
    playlists_->Set("Browser", false);
    playlists_->Set("Device", false);
    playlists_->Update();
}

void PlaylistWriter::WriteLine(const std::string& line) {
    file_->WriteLine(line);
    ++count_;
}

/// With the last three digits of the number alone, so that part 1001 takes the place of part 1.
std::string PlaylistWriter::PartName() const {
    const std::string digits = "000" + std::to_string(part_);
    return name_ + std::string(Right(digits, 3));
}

}  // namespace quillon
