#include "platform/portable/folder_index.h"

#include <cerrno>
#include <utility>

#include "platform/basic_text.h"
#include "platform/portable/folder_stream.h"
#include "platform/portable/system_failure.h"
#include "platform/windows_path.h"

namespace quillon {
namespace {

// Enough for every folder that a phase works in at a time; more would only hold memory.
constexpr std::size_t MostListings = 64;

bool IsMissing(int error) {
    return error == ENOENT || error == ENOTDIR;
}

std::pair<std::string, std::string> FolderAndName(const std::string& path) {
    const std::size_t slash = path.rfind('/');
    return {slash == 0 ? "/" : path.substr(0, slash), path.substr(slash + 1)};
}

}  // namespace

void FolderIndex::Listing::Add(std::string name) {
    Entry& entry = names[UpperCase(name)];
    if (entry.name == name) return;
    entry.hasTwin = !entry.name.empty();
    if (entry.name.empty() || name < entry.name) entry.name = std::move(name);
}

int FolderIndex::ReadStamp(const std::string& folder, Stamp& stamp) {
    const std::optional<FileFacts> facts = FactsOf(folder);
    if (!facts) return errno;
    stamp = {facts->identity, facts->modified, facts->changed};
    return 0;
}

/// Nothing when there is no such folder.
std::optional<FolderIndex::Listing> FolderIndex::ReadNames(const std::string& folder) {
    FolderStream stream = OpenFolder(folder);
    if (!stream && IsMissing(errno)) return std::nullopt;
    if (!stream) throw SystemFailure(errno, folder);
    Listing listing;
    ListedKind kind{};
    while (const char* const name = stream.Next(kind)) {
        if (IsWindowsName(name)) listing.Add(name);
    }
    // A folder that goes while it is read has not told its names: no path of it is known not to be.
    if (errno != 0) throw SystemFailure(IsMissing(errno) ? EIO : errno, folder);
    return listing;
}

std::optional<std::string> FolderIndex::Find(const std::string& folder, std::string_view name) {
    // The stamp is taken before the names, so that a change meanwhile shows at the next look.
    Stamp stamp;
    if (const int error = ReadStamp(folder, stamp); error != 0) {
        if (IsMissing(error)) return std::nullopt;
        throw SystemFailure(error, folder);
    }
    auto found = listings_.find(folder);
    if (found == listings_.end() || !(found->second.stamp == stamp)) {
        if (found == listings_.end() && listings_.size() >= MostListings) listings_.clear();
        std::optional<Listing> listing = ReadNames(folder);
        if (!listing) return std::nullopt;
        listing->stamp = stamp;
        found = listings_.insert_or_assign(folder, *std::move(listing)).first;
    }
    const auto entry = found->second.names.find(UpperCase(name));
    return entry == found->second.names.end() ? std::string() : entry->second.name;
}

void FolderIndex::Added(const std::string& path) {
    const auto [folder, name] = FolderAndName(path);
    const auto found = listings_.find(folder);
    if (found == listings_.end()) return;
    found->second.Add(name);
    if (ReadStamp(folder, found->second.stamp) != 0) listings_.erase(found);
}

void FolderIndex::MadeBeside(const std::string& path) {
    const auto found = listings_.find(FolderAndName(path).first);
    if (found == listings_.end()) return;
    if (ReadStamp(found->first, found->second.stamp) != 0) listings_.erase(found);
}

void FolderIndex::Removed(const std::string& path) {
    std::erase_if(listings_, [below = path + '/', &path](const auto& listing) {
        return listing.first == path || listing.first.starts_with(below);
    });
    const auto [folder, name] = FolderAndName(path);
    const auto found = listings_.find(folder);
    if (found == listings_.end()) return;
    const auto entry = found->second.names.find(UpperCase(name));
    const bool known = entry != found->second.names.end();
    // Which names remain of twins, only the folder itself can tell.
    if ((known && entry->second.hasTwin) || ReadStamp(folder, found->second.stamp) != 0) {
        listings_.erase(found);
    } else if (known) {
        found->second.names.erase(entry);
    }
}

}  // namespace quillon
