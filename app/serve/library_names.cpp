#include "app/serve/library_names.h"

#include <utility>

#include "jet/database.h"

namespace quillon {
namespace {

namespace fs = std::filesystem;

std::string Text(const jet::Value& value) {
    const auto* const text = std::get_if<std::string>(&value);
    return text == nullptr ? "" : *text;
}

std::shared_ptr<const NameTable> ReadNames(const fs::path& path) {
    jet::Database database = jet::Database::Open(path, jet::OpenMode::ReadOnly);
    auto names = std::make_shared<NameTable>();
    const auto albums = database.Query("SELECT CDJID, Artist, Title FROM Albums");
    for (; !albums->IsEof(); albums->MoveNext())
        names->albums[Text(albums->Get(0))] = {Text(albums->Get(1)), Text(albums->Get(2)), {}};
    const auto tracks = database.Query("SELECT CDJID, Track, Title FROM Tracks");
    for (; !tracks->IsEof(); tracks->MoveNext()) {
        const auto album = names->albums.find(Text(tracks->Get(0)));
        const jet::Value number = tracks->Get(1);
        if (album != names->albums.end() && std::holds_alternative<std::int64_t>(number))
            album->second.tracks[std::get<std::int64_t>(number)] = Text(tracks->Get(2));
    }
    return names;
}

}  // namespace

const AlbumNames* NameTable::Find(const std::string& cdjid) const {
    const auto found = albums.find(cdjid);
    return found == albums.end() ? nullptr : &found->second;
}

LibraryNames::LibraryNames(std::optional<fs::path> database, std::string problem)
    : database_(std::move(database)), problem_(std::move(problem)) {}

LibraryNames::Answer LibraryNames::Get() {
    const std::scoped_lock lock(mutex_);
    std::string problem = database_ ? Refresh() : problem_;
    return {names_, std::move(problem)};
}

std::string LibraryNames::Refresh() try {
    const Stamp stamp{fs::last_write_time(*database_), fs::file_size(*database_)};
    if (stamp_ == stamp) return "";
    // Whoever changes rows leaves this file beside them for as long as that takes.
    if (fs::exists(fs::path(*database_).replace_extension(".ldb")))
        return "The database is in use just now.";
    names_ = ReadNames(*database_);
    stamp_ = stamp;
    return "";
} catch (const jet::Error& error) {
    return error.what();
} catch (const fs::filesystem_error& error) {
    return "The database cannot be read: " + error.code().message();
}

}  // namespace quillon
