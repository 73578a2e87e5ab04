#include "platform/portable/folder_lister.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdio>
#include <system_error>
#include <utility>

#include "platform/ansi.h"
#include "platform/basic_text.h"
#include "platform/portable/folder_stream.h"
#include "platform/portable/system_failure.h"
#include "platform/portable/temporary_entry.h"

namespace quillon {
namespace {

/// The folders on the way from the mapped folder to `local`, both included.
std::vector<FileIdentity> FoldersOnTheWay(const std::string& local, const std::string& localRoot) {
    std::vector<FileIdentity> folders;
    std::size_t end = localRoot.size();
    while (true) {
        const std::string folder = end == 0 ? "/" : local.substr(0, end);
        if (const auto facts = FactsOf(folder)) folders.push_back(facts->identity);
        if (end >= local.size()) return folders;
        end = std::min(local.find('/', end + 1), local.size());
    }
}

/// A name with the bytes that are not text as \xE9.
std::string Printable(std::string_view name) {
    if (IsValidUtf8(name)) return std::string(name);
    std::string text;
    for (const char character : name) {
        const auto byte = static_cast<unsigned char>(character);
        if (byte < 0x80) {
            text += character;
        } else {
            std::array<char, 5> escape{};
            std::snprintf(escape.data(), escape.size(), "\\x%02X", byte);
            text += escape.data();
        }
    }
    return text;
}

/// An entry as the system lists it.
struct ListedName {
    std::size_t at = 0, size = 0;  ///< place in the names
    std::uint32_t number = 0;      ///< of the order in which the system gave it
    ListedKind kind = ListedKind::Unknown;
};

/// What a folder holds, in a Windows volume's order: to sort it before it is looked at moves
/// nothing but places.
class ListedNames {
  public:
    /// Failure: the folder cannot be read to its end.
    ListedNames(FolderStream& folder, const WindowsPath& shown) {
        ListedKind kind{};
        for (std::uint32_t number = 0; const char* const given = folder.Next(kind); ++number) {
            const std::string_view name = given;
            // What this program is writing just now is no entry.
            if (IsTemporaryName(name)) {
                holdsUnfinished_ = true;
                continue;
            }
            entries_.push_back(
                {.at = names_.size(), .size = name.size(), .number = number, .kind = kind});
            names_.append(name) += '\0';
        }
        if (errno != 0) throw SystemFailure(errno, shown.Text());
        std::ranges::sort(entries_, [this](const ListedName& left, const ListedName& right) {
            return WindowsNameLess(NameOf(left), NameOf(right));
        });
    }

    const std::vector<ListedName>& Entries() const { return entries_; }
    std::string_view NameOf(const ListedName& entry) const {
        return std::string_view(names_).substr(entry.at, entry.size);
    }
    /// For the system, with a zero byte behind it.
    const char* TerminatedName(const ListedName& entry) const { return &names_[entry.at]; }
    /// Whether it holds files that a program is writing, or has left unfinished.
    bool HoldsUnfinished() const { return holdsUnfinished_; }

  private:
    std::string names_;
    std::vector<ListedName> entries_;
    bool holdsUnfinished_ = false;
};

}  // namespace

/// Calls visit(name, facts) for every entry of the wanted kind that Windows could show, in name
/// order, and lists what could not be looked at and what is of the other kind.
template <typename Entry, typename Visit>
FolderStream FolderLister::ForEach(const WindowsPath& shown, const std::string& local,
                                   Wanted wanted, Listing<Entry>& list, Visit visit) {
    FolderStream stream = OpenFolder(local);
    if (!stream) throw SystemFailure(errno, shown.Text());
    const LocalKind wantedKind = wanted == Wanted::Folders ? LocalKind::Folder : LocalKind::File;
    const ListedKind unwanted = wanted == Wanted::Folders ? ListedKind::File : ListedKind::Folder;
    const ListedNames names(stream, shown);
    list.entries.reserve(names.Entries().size());
    for (const ListedName& entry : names.Entries()) {
        const std::string_view name = names.NameOf(entry);
        if (entry.kind == unwanted) {
            if (IsWindowsName(name)) list.others.emplace_back(name);
            continue;
        }
        if (!IsWindowsName(name)) {
            LeaveOut(
                IsValidUtf8(name) ? "a name that Windows cannot hold" : "a name that is not UTF-8",
                shown, name);
            continue;
        }
        const std::optional<FileFacts> facts =
            stream.FactsOf(names.TerminatedName(entry), entry.number);
        if (!facts) {
            // Even "no such file" is no proof: it is what a link says whose disk is away, and what
            // some network drives say for a moment. It was listed just now.
            const int error = errno;
            list.unseen.push_back(shown.Child(name));
            const bool isThere = stream.IsThere(names.TerminatedName(entry));
            // Not even the entry itself can be looked at: then the whole folder is out of reach.
            if (!isThere && errno != ENOENT) throw SystemFailure(errno, list.unseen.back());
            NoteUnseen(error, list.unseen.back());
        } else if (facts->kind == wantedKind) {
            visit(name, *facts);
        } else if (!facts->IsFile() && !facts->IsFolder()) {
            LeaveOut("neither file nor folder", shown, name);
        } else if (facts->IsFile() || entry.kind != ListedKind::Link) {
            list.others.emplace_back(name);
        }
    }
    if (names.HoldsUnfinished() && clearsUnfinished_) RemoveAbandoned(local);
    return stream;
}

FolderNames FolderLister::NamesIn(const std::string& local) {
    FolderNames names;
    FolderStream stream = OpenFolder(local);
    ListedKind kind{};
    for (std::size_t number = 0; const char* const name = stream ? stream.Next(kind) : nullptr;
         ++number) {
        if (IsTemporaryName(name) || !IsWindowsName(name)) continue;
        if (kind == ListedKind::Link) {
            const auto facts = stream.FactsOf(name, number);
            // A folder behind a link may be one of those on the way to it.
            if (facts && facts->IsFile()) kind = ListedKind::File;
        }
        if (kind == ListedKind::Folder) names.folders.emplace_back(name);
        if (kind == ListedKind::File) names.files.emplace_back(name);
    }
    return names;
}

void FolderLister::LeaveOut(std::string_view reason, const WindowsPath& folder,
                            std::string_view name) {
    const std::string path = folder.Child(Printable(name));
    if (!noted_.insert(path).second || !note_) return;
    note_(LogKind::Information, "Left out, " + std::string(reason) + ": " + path);
}

void FolderLister::NoteUnseen(int error, const std::string& path) {
    if (!noted_.insert(path).second || !note_) return;
    const std::string reason = error == ENOENT ? "it leads to where nothing is at present"
                                               : std::generic_category().message(error);
    note_(LogKind::Error,
          "Cannot be looked at, what it stands for is kept: " + path + " (" + reason + ")");
}

/// The database and every path in it take names that differ in letter case alone for one, so nobody
/// can tell which of the files they mean.
void FolderLister::LeaveOutTwins(Listing<FileEntry>& list) {
    const auto isTwin = [&](const FileEntry& left, const FileEntry& right) {
        if (!EqualIgnoringCase(left.name, right.name)) return false;
        list.unseen.push_back(right.path);
        if (noted_.insert(right.path).second && note_) {
            note_(LogKind::Error, "Left out, what it stands for is kept: " + right.path +
                                      " (only letter case tells its name from that of " +
                                      left.path + "; rename one of them)");
        }
        return true;
    };
    std::vector<FileEntry>& files = list.entries;
    files.erase(std::unique(files.begin(), files.end(), isTwin), files.end());
}

Listing<FolderEntry> FolderLister::SubFolders(const WindowsPath& shown, const std::string& local,
                                              const std::string& localRoot) {
    Listing<FolderEntry> list;
    const std::vector<FileIdentity> onTheWay = FoldersOnTheWay(local, localRoot);
    ForEach(shown, local, Wanted::Folders, list,
            [&](std::string_view name, const FileFacts& facts) {
                const bool loops =
                    std::find(onTheWay.begin(), onTheWay.end(), facts.identity) != onTheWay.end();
                if (loops) {
                    LeaveOut("a folder inside itself", shown, name);
                } else {
                    list.entries.push_back({shown.Child(name), std::string(name)});
                }
            });
    return list;
}

Listing<FileEntry> FolderLister::FilesIn(const WindowsPath& shown, const std::string& local) {
    Listing<FileEntry> list;
    const std::string beginning = shown.Child("");
    listed_ = ForEach(
        shown, local, Wanted::Files, list, [&](std::string_view name, const FileFacts& facts) {
            std::string path;
            path.reserve(beginning.size() + name.size());
            path.append(beginning).append(name);
            list.entries.push_back(MakeFileEntry(std::move(path), std::string(name), facts));
        });
    listedShown_ = beginning;
    LeaveOutTwins(list);
    return list;
}

int FolderLister::OpenListed(std::string_view path) {
    errno = ENOENT;
    if (!listed_ || !path.starts_with(listedShown_)) return -1;
    openName_ = path.substr(listedShown_.size());
    if (!IsWindowsName(openName_)) return -1;
    return listed_.Open(openName_.c_str());
}

FileEntry FolderLister::MakeFileEntry(std::string path, std::string name, const FileFacts& facts) {
    return {std::move(path), std::move(name), facts.size, localTime_.Of(facts.modified.seconds),
            facts.changed.InNanoseconds()};
}

}  // namespace quillon
