#include "run/library_lists.h"

#include <cstdint>
#include <memory>

#include "platform/basic_text.h"
#include "platform/encoded_text.h"
#include "platform/failure.h"
#include "platform/files.h"

namespace quillon {
namespace {

/// Anywhere in the name, as it has always been: "folders.txt.bak" counts, too.
bool IsList(std::string_view name) {
    return LowerCase(name).find(".txt") != std::string::npos;
}

std::string ReadWhole(Files& files, const std::string& path) {
    constexpr std::uint64_t Most = std::uint64_t{1} << 20U;
    const std::unique_ptr<BinaryReader> reader = files.OpenBinary(path);
    if (reader->Size() > Most)
        throw Failure(FailureNumber::Overflow, path + " is too large for a list of folders");
    const std::vector<std::uint8_t> bytes = reader->Read(static_cast<std::size_t>(reader->Size()));
    return {bytes.begin(), bytes.end()};
}

void AddLines(const std::string& text, std::vector<std::string>& lines) {
    constexpr std::string_view LineEnds = "\r\n";
    for (std::size_t at = 0; at < text.size();) {
        const std::size_t end = std::min(text.find_first_of(LineEnds, at), text.size());
        const std::string_view line = Trim(std::string_view(text).substr(at, end - at));
        if (!line.empty()) lines.emplace_back(line);
        at = end + 1;
    }
}

}  // namespace

std::vector<std::string> ListedLibraryFolders(Files& files, std::string_view root) {
    std::vector<std::string> lines;
    const Listing<FileEntry> found = files.FilesIn(root);
    for (const std::string& unseen : found.unseen) {
        if (IsList(unseen)) throw Failure(FailureNumber::PathFileAccess, unseen);
    }
    for (const FileEntry& file : found) {
        if (IsList(file.name)) AddLines(DecodeText(ReadWhole(files, file.path)), lines);
    }
    return lines;
}

}  // namespace quillon
