#include "jet/storage/journal.h"

#include <algorithm>
#include <cstring>
#include <string_view>
#include <vector>

#include "jet/error.h"
#include "jet/value.h"

namespace jet::storage {

namespace {

constexpr std::string_view FormatName = "QuillonJournal 1";
constexpr std::size_t PageCountOffset = 16, RecordCountOffset = 20, BeforeOffset = 512;
constexpr std::size_t HeadSize = 1024, RecordSize = 4 + PageSize, ChecksumSize = 8;

using Record = std::array<std::uint8_t, RecordSize>;

/// Every bit of the input changes the result; all lengths fed to it are multiples of 4.
class Checksum {
  public:
    void Add(std::span<const std::uint8_t> bytes) {
        for (std::size_t offset = 0; offset + 4 <= bytes.size(); offset += 4) {
            value_ = (value_ ^ Load<std::uint32_t>(bytes, offset)) * 0x100000001B3;
            value_ ^= value_ >> 29;
        }
    }
    std::uint64_t Result() const { return value_; }

  private:
    std::uint64_t value_ = 0xCBF29CE484222325;
};

/// Gathers small writes into large ones.
class Appender {
  public:
    explicit Appender(File& file) : file_(file) { buffer_.reserve(BufferSize); }

    void Append(std::span<const std::uint8_t> bytes) {
        if (buffer_.size() + bytes.size() > BufferSize) Flush();
        buffer_.insert(buffer_.end(), bytes.begin(), bytes.end());
    }

    void Flush() {
        file_.WriteAt(offset_, buffer_);
        offset_ += buffer_.size();
        buffer_.clear();
    }

  private:
    static constexpr std::size_t BufferSize = 64 * RecordSize;

    File& file_;
    Bytes buffer_;
    std::uint64_t offset_ = 0;
};

std::uint64_t RecordOffset(std::size_t record) {
    return HeadSize + static_cast<std::uint64_t>(record) * RecordSize;
}

}  // namespace

CommitCounters CountersOf(const Page& header) {
    CommitCounters counters;
    std::copy_n(header.begin() + header_format::CommitCountersOffset, counters.size(),
                counters.begin());
    return counters;
}

void WriteJournal(FileSystem& files, const std::filesystem::path& path, PageNumber pageCount,
                  const CommitCounters& before, std::span<const JournalPage> pages) {
    const auto file = files.Open(path, FileAccess::Replace);
    Appender appender(*file);
    Checksum checksum;
    const auto append = [&](std::span<const std::uint8_t> bytes) {
        checksum.Add(bytes);
        appender.Append(bytes);
    };

    std::array<std::uint8_t, HeadSize> head{};
    std::copy(FormatName.begin(), FormatName.end(), head.begin());
    Store(std::span(head), PageCountOffset, pageCount);
    Store(std::span(head), RecordCountOffset, static_cast<std::uint32_t>(pages.size()));
    std::copy(before.begin(), before.end(), head.begin() + BeforeOffset);
    append(head);
    for (const auto& [number, page] : pages) {
        std::array<std::uint8_t, 4> place{};
        Store(std::span(place), 0, number);
        append(place);
        append(*page);
    }
    std::array<std::uint8_t, ChecksumSize> tail{};
    Store(std::span(tail), 0, checksum.Result());
    appender.Append(tail);
    appender.Flush();
    file->Sync();
}

std::optional<JournalReader> JournalReader::Open(FileSystem& files,
                                                 const std::filesystem::path& path) {
    auto file = files.Open(path, FileAccess::Read);
    std::array<std::uint8_t, HeadSize> head{};
    if (file->ReadAt(0, head) != head.size()) return std::nullopt;
    if (!std::equal(FormatName.begin(), FormatName.end(), head.begin())) return std::nullopt;
    const auto pageCount = Load<std::uint32_t>(head, PageCountOffset);
    const std::size_t records = Load<std::uint32_t>(head, RecordCountOffset);
    if (file->Size() != RecordOffset(records) + ChecksumSize) return std::nullopt;

    Checksum checksum;
    checksum.Add(head);
    Record record;
    for (std::size_t i = 0; i < records; ++i) {
        if (file->ReadAt(RecordOffset(i), record) != record.size()) return std::nullopt;
        if (Load<PageNumber>(record, 0) >= pageCount) return std::nullopt;
        checksum.Add(record);
    }
    std::array<std::uint8_t, ChecksumSize> tail{};
    if (file->ReadAt(RecordOffset(records), tail) != tail.size()) return std::nullopt;
    if (Load<std::uint64_t>(tail, 0) != checksum.Result()) return std::nullopt;

    CommitCounters before;
    std::copy_n(head.begin() + BeforeOffset, before.size(), before.begin());
    return JournalReader(std::move(file), pageCount, records, before);
}

void JournalReader::ForEach(const std::function<void(PageNumber, const Page&)>& visit) const {
    Record record;
    Page page;
    for (std::size_t i = 0; i < records_; ++i) {
        if (file_->ReadAt(RecordOffset(i), record) != record.size())
            throw Error(ErrorKind::Io, "A journal has become shorter while it was read.");
        std::copy(record.begin() + 4, record.end(), page.begin());
        visit(Load<PageNumber>(record, 0), page);
    }
}

}  // namespace jet::storage
