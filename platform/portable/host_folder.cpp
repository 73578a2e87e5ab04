#include "platform/portable/host_folder.h"

#include <array>
#include <cerrno>
#include <system_error>

#include "platform/ansi.h"
#include "platform/basic_text.h"
#include "platform/failure.h"
#include "platform/portable/file_handle.h"
#include "platform/portable/system_failure.h"
#include "platform/windows_path.h"

namespace quillon {
namespace {

constexpr const char* LogName = "host.log";

// Far more than any person writes, far less than would do harm.
constexpr std::uint64_t LargestSettingsFile = std::uint64_t{1} << 20U;

std::filesystem::path CheckedFolder(const std::filesystem::path& folder) {
    std::error_code ignored;
    if (folder.empty() || !std::filesystem::is_directory(folder, ignored)) {
        throw Failure(FailureNumber::PathNotFound, "host folder " + folder.string());
    }
    const std::filesystem::path normal = std::filesystem::absolute(folder).lexically_normal();
    return normal.has_filename() ? normal : normal.parent_path();
}

std::string ReadAll(const FileHandle& file) {
    std::string content;
    std::array<std::uint8_t, 65536> buffer{};
    while (const std::size_t length = file.ReadAt(content.size(), buffer))
        content.append(buffer.begin(), buffer.begin() + static_cast<std::ptrdiff_t>(length));
    return content;
}

/// A text that stays on its line of the log: every line end, and every control character but the
/// tab, becomes a blank.
std::string OnOneLine(std::string_view text) {
    std::string line = Replace(ToValidUtf8(text), "\r\n", " ");
    for (char& character : line) {
        const auto code = static_cast<unsigned char>(character);
        if ((code < 0x20 && character != '\t') || code == 0x7F) character = ' ';
    }
    return line;
}

}  // namespace

HostFolder::HostFolder(const std::filesystem::path& folder, const Clock& clock)
    // A link to the folder may lie anywhere; what is written in it is meant from where it is.
    : folder_(CheckedFolder(folder)), clock_(clock), drives_(std::filesystem::canonical(folder_)) {
    MapDrives();
}

void HostFolder::MapDrives() {
    const std::string file = (folder_ / HostSettingsFile).string();
    for (const auto& [root, local] : Read(HostSettingsFile).Entries("Drives")) {
        if (local.empty()) {
            std::string told = "The line \"";
            told.append(root).append("=\" below [Drives] in ").append(file);
            told.append(" names no folder. Write the folder that ").append(root);
            told.append(" stands for behind it, or remove the line");
            throw Failure::Described(FailureNumber::InvalidProcedureCall, told);
        }
        try {
            drives_.Map(root, local);
        } catch (const Failure& failure) {
            throw Failure::Described(failure.Number(), std::string(failure.what()) + " in " + file);
        }
    }
    drives_.MakeReachable(folder_);
}

/// The file's content; that of an empty file when there is none of that name.
const IniFile& HostFolder::Read(std::string_view file) {
    if (!IsWindowsName(file)) throw Failure(FailureNumber::BadFileName, ToValidUtf8(file));
    std::filesystem::path path = folder_ / file;
    if (!FactsOf(path.string())) {
        const std::string real = index_.Find(folder_.string(), file).value_or("");
        if (!real.empty()) path = folder_ / real;
    }
    ReadFile& known = files_[path.string()];
    const int descriptor = OpenLocal(path.string(), FileUse::Read);
    if (descriptor < 0) {
        if (errno != ENOENT) throw SystemFailure(errno, path.string());
        known = {};
        return known.content;
    }
    const FileHandle handle(descriptor, path.string());
    const FileFacts facts = handle.Facts();
    if (!facts.IsFile()) throw NoFileFailure(facts.kind, path.string());
    if (facts.size > LargestSettingsFile) {
        throw Failure::Described(
            FailureNumber::Overflow,
            path.string() +
                " is larger than 1 MB, so it is not a settings file; correct or replace it");
    }
    const bool unchanged = known.number == facts.identity.number && known.size == facts.size &&
                           known.modified == facts.modified;
    if (!unchanged) {
        known = {facts.identity.number, facts.size, facts.modified,
                 IniFile::Parse(ReadAll(handle))};
    }
    return known.content;
}

std::string HostFolder::GetINISetting(std::string_view section, std::string_view key,
                                      std::string_view fallback, std::string_view file) {
    return Read(file).Find(section, key).value_or(std::string(fallback));
}

std::vector<std::string> HostFolder::GetINILines(std::string_view section, std::string_view file) {
    return Read(file).Lines(section);
}

std::filesystem::path HostFolder::LogPath() const {
    return folder_ / LogName;
}

void HostFolder::WriteLog(std::string_view source, std::string_view message) {
    const std::string path = LogPath().string();
    const std::string record = SortableDateTimeText(clock_.Now()) + '\t' +
                               Replace(OnOneLine(source), "\t", " ") + '\t' + OnOneLine(message) +
                               '\n';
    // Opened for each record, so that the log may be moved away or cut at any time.
    const int descriptor = OpenLocal(path, FileUse::Append);
    if (descriptor < 0) throw SystemFailure(errno, path);
    const FileHandle log(descriptor, path);
    const std::uint64_t before = log.Facts().size;
    try {
        log.Write(endsInTheMiddle_ ? '\n' + record : record);
        endsInTheMiddle_ = false;
    } catch (const Failure&) {
        endsInTheMiddle_ = endsInTheMiddle_ || log.Facts().size > before;
        throw;
    }
}

std::vector<std::string> HostFolder::GetPlugins() {
    std::vector<std::string> names;
    for (const auto& [name, value] : Read(HostSettingsFile).Entries("Plugins")) {
        if (IsSwitchedOn(value)) names.push_back(name);
    }
    return names;
}

std::string HostFolder::GetAppPath() {
    std::string path = drives_.WindowsPathOf(folder_).value();
    // A drive's own folder is shown with a backslash, which an application path has not.
    if (path.ends_with('\\')) path.pop_back();
    return path;
}

}  // namespace quillon
