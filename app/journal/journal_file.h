#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <string>
#include <string_view>

#include "app/journal/journal_lines.h"
#include "app/journal/journal_place.h"
#include "app/journal/net_changes.h"
#include "changes/change.h"
#include "platform/clock.h"
#include "platform/portable/file_handle.h"

namespace quillon {

/// The journal of a run: FOLDER/<stamp>.jsonl, a line for each record. What a kill leaves is whole
/// lines but for the last one.
///
/// There is always some room for the lines that close what was planned: a disk that is full refuses
/// what is to happen, not what has. Once it has refused something it refuses whatever else is to
/// happen, so that a run does not go on around a gap.
class JournalFile : public ChangeSink {
  public:
    using Listener = std::function<void(const ChangeRecord&)>;

    /// Makes the file, and the folder where there is none; links of these names are not followed.
    /// The stamp is the time now. Failure: DiskFull, PermissionDenied and the like.
    /// `listener`, if any, is told of each record that is taken.
    JournalFile(const std::filesystem::path& folder, const Clock& clock, Listener listener = {});
    JournalFile(const JournalFile&) = delete;
    JournalFile& operator=(const JournalFile&) = delete;
    ~JournalFile() override;

    const std::string& Stamp() const { return stamp_; }

    void Note(const ChangeRecord& record) override;
    void MakeDurable() override;

    /// Notes what stands for itself and keeps nothing from happening, such as a line of the log.
    void Remark(const ChangeRecord& record) noexcept;

    /// How many changes of the library it holds.
    std::uint64_t Changes() const { return changes_.Value(); }

    /// Why it has refused something; "" as long as all is well.
    const std::string& Trouble() const { return trouble_; }

  private:
    /// A new file with a name that nothing has.
    FileHandle MakeFile(const std::filesystem::path& folder, const Clock& clock);
    void Append(const ChangeRecord& record);
    void Count(const ChangeRecord& record);
    void Refuse(const std::string& reason);
    void RequireNoTrouble() const;
    void MakeRoom();
    void Write();

    JournalPlace place_;
    std::string stamp_;
    FileHandle file_;
    JournalLines lines_;
    std::string buffer_;      ///< whole lines that are not in the file yet
    std::uint64_t size_ = 0;  ///< of the file
    std::uint64_t room_ = 0;  ///< up to where the disk has room set aside for it
    ChangeCount changes_;
    std::uint64_t writesLeft_ = 0;
    bool isDurable_ = true;         ///< whether all that is planned survives a power cut
    bool isFolderDurable_ = false;  ///< likewise its name
    bool lacksFailure_ = false;     ///< whether it tells as done what has not come off
    std::string trouble_;
    Listener listener_;
};

/// The stamp that a journal started now would have: the time, or that of the newest journal where
/// the clock has been put back behind it, with a number where that is taken. Changes nothing; what
/// cannot be looked at counts as not there.
std::string FreeStamp(const std::filesystem::path& folder, const Clock& clock);

/// The folder of a host folder that holds the journals: HOST/Changes.
std::filesystem::path ChangesFolder(const std::filesystem::path& host);

/// Removes what other runs have kept beside their journals under the names of what this run has
/// kept: of the old pages of the picker, say, the newest set stays. Never fails; what cannot be
/// removed stays.
void RemoveOlderContent(const std::filesystem::path& folder, std::string_view stamp) noexcept;

}  // namespace quillon
