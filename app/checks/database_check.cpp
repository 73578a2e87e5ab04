#include "app/checks/database_check.h"

#include <array>
#include <fmt/format.h>
#include <fstream>
#include <ostream>
#include <string>
#include <string_view>

#include "app/database_needs.h"
#include "app/display_text.h"
#include "database/schema.h"
#include "jet/database.h"
#include "platform/basic_text.h"

namespace quillon {
namespace {

std::int64_t Count(jet::Database& database, const std::string& from) {
    const auto rows = database.Query("SELECT Count(*) AS Rows FROM " + from);
    return std::get<std::int64_t>(rows->Get(0));
}

std::string OwnedTracks() {
    return fmt::format(
        "Tracks INNER JOIN Albums ON Tracks.CDJID = Albums.CDJID WHERE Albums.Player={}",
        OwnedPlayer);
}

/// Owned tracks whose file is named below the library root.
std::int64_t TracksBelow(jet::Database& database, std::string_view libraryRoot) {
    const std::string root = LowerCase(libraryRoot);
    std::int64_t count = 0;
    const auto tracks = database.Query("SELECT Tracks.SoundFile FROM " + OwnedTracks());
    for (; !tracks->IsEof(); tracks->MoveNext()) {
        const jet::Value soundFile = tracks->Get(0);
        const auto* const text = std::get_if<std::string>(&soundFile);
        count += text != nullptr && LowerCase(*text).starts_with(root) ? 1 : 0;
    }
    return count;
}

void CheckGenres(jet::Database& database, Findings& findings) {
    const std::int64_t bad =
        Count(database, "SpinnerGenre WHERE GenreID Is Null OR GenreID < 0 OR GenreID > 255");
    if (bad > 0)
        findings.Problem(fmt::format(
            "Table SpinnerGenre has {} row(s) with a GenreID that is not 0 to 255", bad));
}

void TellContents(jet::Database& database, const Settings& settings, std::ostream& out,
                  Findings& findings) {
    const std::int64_t owned = Count(database, OwnedTracks());
    out << fmt::format("  {} albums, {} tracks; {} tracks are the tool's own\n",
                       Count(database, "Albums"), Count(database, "Tracks"), owned);
    if (settings.LibraryRoot.empty() || owned == 0) return;
    const std::int64_t below = TracksBelow(database, settings.LibraryRoot);
    out << fmt::format("  {} of those name a file below LibraryRoot\n", below);
    if (below == 0)
        findings.Caution(
            "None of the tool's own tracks lies below LibraryRoot: a reconciliation would remove "
            "them all and add what it finds as new");
}

/// The lock file that says who has the database open, and what that means for a run.
void CheckLock(const std::filesystem::path& database, Findings& findings) {
    constexpr std::size_t NameSize = 32;
    const std::filesystem::path path = std::filesystem::path(database).replace_extension(".ldb");
    std::ifstream file(path, std::ios::binary);
    bool isOthers = false;
    bool hasEntry = false;
    std::array<char, 2 * NameSize> entry{};
    while (file.read(entry.data(), entry.size())) {
        hasEntry = true;
        const std::string_view user(entry.data() + NameSize, NameSize);
        isOthers = isOthers || !user.starts_with("Quillon");
    }
    if (isOthers)
        findings.Problem(fmt::format(
            "Another program has the database open, or was cut off while it had: {} is there",
            path.string()));
    else if (hasEntry)
        findings.Caution(
            fmt::format("A run is under way, or was cut off: {} is there", path.string()));
}

}  // namespace

void CheckDatabase(const std::filesystem::path& path, const Settings& settings, std::ostream& out,
                   Findings& findings) try {
    CheckLock(path, findings);
    jet::Database database = jet::Database::Open(path, jet::OpenMode::ReadOnly);
    const auto tables = database.Tables();
    out << fmt::format("  opens; {} tables\n", tables.size());
    const std::vector<std::string> missing = MissingForTheTool(tables);
    for (const std::string& sentence : missing)
        findings.Problem(sentence);
    if (!missing.empty()) return;
    out << "  has every table and field that is needed\n";
    CheckGenres(database, findings);
    TellContents(database, settings, out, findings);
} catch (const jet::Error& error) {
    out << "  cannot be used: " << OneLine(error.what()) << '\n';
    findings.Problem(error.what());
}

}  // namespace quillon
