#include "platform/portable/path_resolver.h"

#include <cerrno>

#include "platform/failure.h"
#include "platform/portable/local_file.h"

namespace quillon {
namespace {

/// Whether something has this very name. What cannot be told is taken as it is written: the
/// operation that follows says what is wrong with it.
bool MayExist(const std::string& local) {
    return FactsOfLink(local) || (errno != ENOENT && errno != ENOTDIR);
}

std::string Join(const std::string& folder, std::string_view name) {
    std::string path = folder;
    path += '/';
    path += name;
    return path;
}

}  // namespace

std::string PathResolver::LocalRoot(const WindowsPath& path) const {
    const std::optional<std::string> folder = drives_.LocalFolder(path.root);
    if (!folder) throw Failure(FailureNumber::PathNotFound, path.Text());
    return *folder;
}

std::string PathResolver::Exact(const WindowsPath& path) const {
    const std::string root = LocalRoot(path);
    return path.rest.empty() && !root.empty() ? root : Join(root, path.rest);
}

std::string PathResolver::Local(const WindowsPath& path) {
    std::string local = Exact(path);
    if (path.rest.empty() || SpeaksWindowsPaths()) return local;
    if (!MayExist(local)) Find(LocalRoot(path), path.rest, local);
    return local;
}

/// Puts the path of `rest` into `local`; whether it exists. The whole is not there as it is
/// written.
bool PathResolver::Find(const std::string& root, std::string_view rest, std::string& local) {
    const std::size_t slash = rest.rfind('/');
    const bool isTop = slash == std::string_view::npos;
    const std::string_view name = isTop ? rest : rest.substr(slash + 1);
    std::string folder = root;
    if (!isTop) {
        const std::string_view parent = rest.substr(0, slash);
        folder = Join(root, parent);
        const bool asWritten = MayExist(folder);
        if (!asWritten && !Find(root, parent, folder)) {
            local = Join(folder, name);
            return false;
        }
        local = Join(folder, name);
        if (!asWritten && MayExist(local)) return true;
    }
    const std::string real = index_.Find(folder.empty() ? "/" : folder, name);
    local = Join(folder, real.empty() ? name : real);
    return !real.empty();
}

}  // namespace quillon
