#include "platform/portable/certain_facts.h"

#include <algorithm>
#include <cerrno>

#include "platform/failure.h"
#include "platform/portable/folder_stream.h"
#include "platform/portable/system_failure.h"

namespace quillon {
namespace {

/// Whether the path leads through a link, or is one, that leads to where nothing is at present.
bool IsBehindLostLink(std::string local) {
    while (!local.empty()) {
        if (const auto facts = FactsOfLink(local))
            return facts->kind == LocalKind::Link && !FactsOf(local);
        local.resize(std::min(local.rfind('/'), local.size() - 1));
    }
    return false;
}

}  // namespace

std::optional<FileFacts> CertainFacts(const std::string& local, const std::string& shown) {
    if (const auto facts = FactsOf(local)) return facts;
    const int error = errno;
    if (error == ENAMETOOLONG) return std::nullopt;
    if (error != ENOENT && error != ENOTDIR) throw SystemFailure(error, shown);
    if (IsBehindLostLink(local)) {
        throw Failure(FailureNumber::PathNotFound,
                      shown + " (a link leads to where nothing is at present)");
    }
    return std::nullopt;
}

bool IsInside(const std::string& inner, const std::string& outer) {
    const std::optional<FileFacts> wanted = CertainFacts(outer, outer);
    if (!wanted || !CertainFacts(inner, inner)) return false;
    const std::optional<std::string> real = RealPath(inner);
    if (!real) throw SystemFailure(errno, inner);
    for (std::string folder = *real;;) {
        const std::optional<FileFacts> facts = CertainFacts(folder, folder);
        if (facts && facts->identity == wanted->identity) return true;
        const std::size_t slash = folder.rfind('/');
        if (slash == std::string::npos || folder == "/") return false;
        folder.resize(std::max<std::size_t>(slash, 1));
    }
}

bool LeadsNowhere(const std::string& local) {
    if (FactsOf(local) || errno != ENOENT) return false;
    const auto facts = FactsOfLink(local);
    return facts && facts->kind == LocalKind::Link;
}

bool HoldsProtectedFile(const std::string& folder) {
    const auto facts = FactsOfLink(folder);
    if (facts && facts->kind == LocalKind::Link) return false;
    if (!MayWrite(folder)) return true;
    FolderStream stream = OpenFolder(folder);
    if (!stream) return true;
    ListedKind kind{};
    while (const char* const name = stream.Next(kind)) {
        const std::string path = folder + '/' + name;
        if (kind == ListedKind::Link) continue;
        if (kind == ListedKind::Folder ? HoldsProtectedFile(path) : !MayWrite(path)) return true;
    }
    return errno != 0;
}

}  // namespace quillon
