#include "platform/windows/com_host.h"

#include "platform/portable/file_handle.h"
#include "platform/portable/ini_file.h"

namespace quillon {
namespace {

constexpr std::uint64_t LargestFile = std::uint64_t{1} << 20U;

}  // namespace

bool ComHost::IsInstalled() {
    const ComApartment apartment;
    return AutomationObject::IsRegistered(ProgramId);
}

std::string ComHost::GetINISetting(std::string_view section, std::string_view key,
                                   std::string_view fallback, std::string_view file) {
    return object_.Text("GetINISetting", {section, key, fallback, file});
}

std::vector<std::string> ComHost::GetINILines(std::string_view section, std::string_view file) {
    const std::string path = GetAppPath() + '\\' + std::string(file);
    const int descriptor = OpenLocal(path, FileUse::Read);
    if (descriptor < 0) return {};
    const FileHandle handle(descriptor, path);
    const FileFacts facts = handle.Facts();
    if (!facts.IsFile() || facts.size > LargestFile) return {};
    std::string content(facts.size, '\0');
    content.resize(
        handle.ReadAt(0, {reinterpret_cast<std::uint8_t*>(content.data()), content.size()}));
    return IniFile::Parse(content).Lines(section);
}

void ComHost::WriteLog(std::string_view source, std::string_view message) {
    object_.Text("writelog", {source, message});
}

std::vector<std::string> ComHost::GetPlugins() {
    std::vector<std::string> names;
    for (AutomationObject& plugin : object_.List("GetPlugins"))
        names.push_back(plugin.Text("Name"));
    return names;
}

std::string ComHost::GetAppPath() {
    std::string path = object_.Text("GetAppPath");
    if (path.ends_with('\\')) path.pop_back();
    return path;
}

}  // namespace quillon
