#include "platform/portable/folder_index.h"

#include <cerrno>
#include <sys/stat.h>
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

bool SameTime(const std::timespec& left, const std::timespec& right) {
    return left.tv_sec == right.tv_sec && left.tv_nsec == right.tv_nsec;
}

std::pair<std::string, std::string> FolderAndName(const std::string& path) {
    const std::size_t slash = path.rfind('/');
    return {slash == 0 ? "/" : path.substr(0, slash), path.substr(slash + 1)};
}

}  // namespace

bool FolderIndex::Stamp::operator==(const Stamp& other) const {
    return device == other.device && inode == other.inode && SameTime(modified, other.modified) &&
           SameTime(changed, other.changed);
}

void FolderIndex::Listing::Add(std::string name) {
    Entry& entry = names[UpperCase(name)];
    if (entry.name == name) return;
    entry.hasTwin = !entry.name.empty();
    if (entry.name.empty() || name < entry.name) entry.name = std::move(name);
}

int FolderIndex::ReadStamp(const std::string& folder, Stamp& stamp) {
    struct stat facts{};
    if (stat(folder.c_str(), &facts) != 0) return errno;
    stamp = {facts.st_dev, facts.st_ino, facts.st_mtim, facts.st_ctim};
    return 0;
}

/// Nothing when there is no such folder.
std::optional<FolderIndex::Listing> FolderIndex::ReadNames(const std::string& folder) {
    const FolderStream stream = OpenFolder(folder);
    if (!stream && IsMissing(errno)) return std::nullopt;
    if (!stream) throw SystemFailure(errno, folder);
    Listing listing;
    while (true) {
        errno = 0;
        const dirent* const entry = readdir(stream.get());
        if (entry == nullptr) break;
        if (IsWindowsName(entry->d_name)) listing.Add(entry->d_name);
    }
    if (errno != 0) throw SystemFailure(errno, folder);
    return listing;
}

std::string FolderIndex::Find(const std::string& folder, std::string_view name) {
    // The stamp is taken before the names, so that a change meanwhile shows at the next look.
    Stamp stamp;
    if (const int error = ReadStamp(folder, stamp); error != 0) {
        if (IsMissing(error)) return {};
        throw SystemFailure(error, folder);
    }
    auto found = listings_.find(folder);
    if (found == listings_.end() || !(found->second.stamp == stamp)) {
        if (found == listings_.end() && listings_.size() >= MostListings) listings_.clear();
        std::optional<Listing> listing = ReadNames(folder);
        if (!listing) return {};
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
