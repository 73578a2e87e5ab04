#pragma once

#include <cstdint>
#include <deque>
#include <functional>
#include <memory>
#include <string>
#include <string_view>

#include "changes/change.h"
#include "changes/file_records.h"
#include "platform/files.h"

namespace quillon {

/// What has been written so far, for a record: the bytes only while they are few enough for one.
class WrittenContent {
  public:
    void Add(std::string_view bytes);
    const FileContent& Get() const { return content_; }

  private:
    FileContent content_{.size = 0, .hash = ContentHash(""), .bytes = std::string()};
};

/// Writes a text file and records it right before it gets its name.
class JournalledText : public TextWriter {
  public:
    using Change = std::function<FileChange(FileContent)>;

    /// `records` must outlive this object.
    JournalledText(std::unique_ptr<TextWriter> writer, FileRecords& records, Change change)
        : writer_(std::move(writer)), records_(records), change_(std::move(change)) {}

    void Write(std::string_view text) override;
    void WriteLine(std::string_view line) override;
    void WriteBytes(std::string_view bytes) override;
    void SetModified(DateTime local) override { writer_->SetModified(local); }
    void Close() override;
    bool CloseIf(const std::function<bool()>& isWanted) override;

  private:
    std::unique_ptr<TextWriter> writer_;
    FileRecords& records_;
    Change change_;
    WrittenContent content_;
};

/// The same for files that get their names in groups.
class JournalledBatch : public TextBatch {
  public:
    using Change = std::function<FileChange(std::string_view path, FileContent)>;

    /// `files` and `records` must outlive this object.
    JournalledBatch(Files& files, FileRecords& records, Change change, Done done);

    void Write(std::string_view path, std::string_view bytes) override;
    void Close() override;

  private:
    void Told(const Failure* failure);

    FileRecords& records_;
    Change change_;
    Done done_;
    std::deque<std::uint64_t> waiting_;  ///< numbers of the files that wait for their names
    std::uint64_t current_ = 0;          ///< of the one that is being written
    bool isReplacing_ = false;           ///< whether any takes the place of another
    std::unique_ptr<TextBatch> batch_;   // the first to go
};

}  // namespace quillon
