#pragma once

#include <cstdint>
#include <filesystem>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "platform/clock.h"
#include "platform/host.h"
#include "platform/portable/drive_table.h"
#include "platform/portable/folder_index.h"
#include "platform/portable/ini_file.h"

namespace quillon {

/// Stands in for the home-automation host by a folder: settings files lie in it, `host.ini` names
/// the plug-ins and drives, `host.log` takes the log.
class HostFolder : public Host {
  public:
    /// Failure: PathNotFound when the folder is not there, InvalidProcedureCall for a line of
    /// [Drives] that is none. The clock, which dates the log, must outlive the host.
    HostFolder(const std::filesystem::path& folder, const Clock& clock);

    std::string GetINISetting(std::string_view section, std::string_view key,
                              std::string_view fallback, std::string_view file) override;
    std::vector<std::string> GetINILines(std::string_view section, std::string_view file) override;
    void WriteLog(std::string_view source, std::string_view message) override;
    std::vector<std::string> GetPlugins() override;
    std::string GetAppPath() override;

    /// Keys as written with their values, in the order of a settings file.
    std::vector<IniFile::Entry> Entries(std::string_view section, std::string_view file) {
        return Read(file).Entries(section);
    }

    /// The roots of [Drives] with their local folders; the host folder itself can be reached.
    const DriveTable& Drives() const { return drives_; }

    /// The host folder's absolute local path.
    const std::filesystem::path& Folder() const { return folder_; }

    /// The local path of the log.
    std::filesystem::path LogPath() const;

  private:
    /// A settings file as it was when it was last read.
    struct ReadFile {
        std::uint64_t number = 0, size = 0;
        FileTime modified;
        IniFile content;
    };

    const IniFile& Read(std::string_view file);
    void MapDrives();

    std::filesystem::path folder_;
    const Clock& clock_;
    DriveTable drives_;
    FolderIndex index_;
    std::map<std::string, ReadFile> files_;  ///< by local path
    bool endsInTheMiddle_ = false;           ///< a full disk has cut the last record short
};

}  // namespace quillon
