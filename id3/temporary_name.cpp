#include "id3/temporary_name.h"

namespace quillon {
namespace {

constexpr std::string_view Renaming = ".quillon-renaming", Vanished = ".quillon-vanished";
constexpr std::string_view Ending = ".mp3";

/// All these names end so, in some letter case.
std::string Marked(std::string_view path, std::string_view mark) {
    const std::string_view stem = path.substr(0, path.size() - Ending.size());
    return std::string(stem).append(mark).append(path.substr(stem.size()));
}

}  // namespace

std::string TemporaryPath(std::string_view path) {
    return Marked(path, Renaming);
}

std::optional<std::string> NameBeforeRenaming(std::string_view name) {
    if (name.size() <= Ending.size()) return std::nullopt;
    const std::string_view stem = name.substr(0, name.size() - Ending.size());
    if (!stem.ends_with(Renaming) || stem.size() == Renaming.size()) return std::nullopt;
    return std::string(stem.substr(0, stem.size() - Renaming.size()))
        .append(name.substr(stem.size()));
}

std::string PathOfVanished(std::string_view path) {
    return Marked(path, Vanished);
}

}  // namespace quillon
