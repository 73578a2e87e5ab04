// tag_tool write|read|read-all   The project's own tag routines for a script: each line of standard
// input is a local path, for "write" with a tab and a record behind it. "write" answers each line
// with "written" or "refused", "read" with the path's record, "read-all" with what tags of all
// kinds say, with tabs between: title, artist, album, year, comment, track, genre, disc, seconds.

#include <algorithm>
#include <array>
#include <iostream>
#include <string>
#include <string_view>

#include "taglib/tag_library.h"
#include "tags/tag_reader.h"
#include "tags/tag_writer.h"
#include "tests/support/real_library.h"
#include "tests/support/tag_records.h"

namespace {

std::string WindowsPath(std::string localPath) {
    std::replace(localPath.begin(), localPath.end(), '/', '\\');
    return "Z:" + localPath;
}

std::string AllOf(const quillon::Tag& tag) {
    using quillon::Tag;
    constexpr std::array Fields{&Tag::song,  &Tag::artist, &Tag::album, &Tag::year,   &Tag::comment,
                                &Tag::track, &Tag::genre,  &Tag::disc,  &Tag::seconds};
    std::string line;
    for (std::string Tag::* const field : Fields)
        line += (field == Fields.front() ? "" : "\t") + tag.*field;
    return line;
}

}  // namespace

int main(int count, char** arguments) {
    const std::string_view what = count == 2 ? arguments[1] : "";
    if (what != "read" && what != "write" && what != "read-all") {
        std::cerr << "usage: tag_tool write|read|read-all\n";
        return 2;
    }
    quillon::support::RealLibrary library;
    quillon::TagLibrary tags;
    library.run.tagFormats = &tags;
    library.run.modern.readsAllTags = what == "read-all";
    const auto genres = library.run.connection->Query("SELECT GenreID, Genre FROM SpinnerGenre");
    for (; !genres->IsEof(); genres->MoveNext())
        library.run.GenreNames.at(static_cast<std::size_t>(genres->Integer("GenreID"))) =
            genres->Text("Genre");
    for (std::string line; std::getline(std::cin, line);) {
        const std::size_t tab = std::min(line.find('\t'), line.size());
        const std::string path = WindowsPath(line.substr(0, tab));
        if (what == "read") {
            const auto tag = quillon::ReadID3(library.run, path);
            std::cout << (tag ? quillon::TagRecord(*tag) : "") << '\n';
        } else if (what == "read-all") {
            std::cout << AllOf(quillon::ReadID3(library.run, path).value_or(quillon::Tag()))
                      << '\n';
        } else {
            const std::string record = line.substr(std::min(tab + 1, line.size()));
            std::cout << (quillon::WriteTag(library.run, path,
                                            quillon::support::TagOfRecord(record))
                              ? "written\n"
                              : "refused\n");
        }
    }
    for (const std::string& message : library.host.log)
        std::cerr << message << '\n';
    return 0;
}
