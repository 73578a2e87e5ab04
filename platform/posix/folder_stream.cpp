#include "platform/portable/folder_stream.h"

#include <cerrno>
#include <dirent.h>
#include <fcntl.h>
#include <utility>

#include "platform/posix/posix_facts.h"

namespace quillon {
namespace {

ListedKind KindOfEntry(unsigned char type) {
    switch (type) {
        case DT_REG:
            return ListedKind::File;
        case DT_DIR:
            return ListedKind::Folder;
        case DT_LNK:
            return ListedKind::Link;
        case DT_UNKNOWN:
            return ListedKind::Unknown;
        default:
            return ListedKind::Other;
    }
}

}  // namespace

struct FolderStream::State {
    explicit State(DIR* opened) : folder(opened) {}
    State(const State&) = delete;
    State& operator=(const State&) = delete;
    ~State() { closedir(folder); }

    int Descriptor() const { return dirfd(folder); }

    /// Where the file system does not tell with the names.
    ListedKind KindOf(const char* name) const {
        struct stat facts{};
        if (fstatat(Descriptor(), name, &facts, AT_SYMLINK_NOFOLLOW) != 0)
            return ListedKind::Unknown;
        return KindOfEntry(static_cast<unsigned char>(IFTODT(facts.st_mode)));
    }

    DIR* const folder;
};

FolderStream::FolderStream() = default;
FolderStream::FolderStream(std::unique_ptr<State> state) : state_(std::move(state)) {}
FolderStream::FolderStream(FolderStream&&) noexcept = default;
FolderStream& FolderStream::operator=(FolderStream&&) noexcept = default;
FolderStream::~FolderStream() = default;

FolderStream OpenFolder(const std::string& folder) {
    DIR* const opened = opendir(folder.c_str());
    if (opened == nullptr) return {};
    return FolderStream(std::make_unique<FolderStream::State>(opened));
}

const char* FolderStream::Next(ListedKind& kind) {
    while (true) {
        errno = 0;
        const dirent* const entry = readdir(state_->folder);
        if (entry == nullptr) return nullptr;
        const std::string_view name = entry->d_name;
        if (name == "." || name == "..") continue;
        kind = KindOfEntry(entry->d_type);
        if (kind == ListedKind::Unknown) kind = state_->KindOf(entry->d_name);
        return entry->d_name;
    }
}

std::optional<FileFacts> FolderStream::FactsOf(const char* name, std::size_t /*number*/) const {
    struct stat facts{};
    if (fstatat(state_->Descriptor(), name, &facts, 0) != 0) return std::nullopt;
    return FactsFrom(facts);
}

bool FolderStream::IsThere(const char* name) const {
    struct stat facts{};
    return fstatat(state_->Descriptor(), name, &facts, AT_SYMLINK_NOFOLLOW) == 0;
}

int FolderStream::Open(const char* name) const {
    return openat(state_->Descriptor(), name, O_RDONLY | O_CLOEXEC | O_NONBLOCK);
}

}  // namespace quillon
