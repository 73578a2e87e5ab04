#include "changes/journalled_texts.h"

#include <utility>

#include "changes/journalled_files.h"
#include "platform/ansi.h"

namespace quillon {

void WrittenContent::Add(std::string_view bytes) {
    content_.size += bytes.size();
    content_.hash = ContentHash(bytes, content_.hash);
    if (content_.size > JournalledFiles::MostInRecord) content_.bytes.reset();
    if (content_.bytes) content_.bytes->append(bytes);
}

void JournalledText::Write(std::string_view text) {
    WriteBytes(Utf8ToAnsi(text));
}

void JournalledText::WriteLine(std::string_view line) {
    WriteBytes(Utf8ToAnsi(line) + "\r\n");
}

void JournalledText::WriteBytes(std::string_view bytes) {
    writer_->WriteBytes(bytes);
    content_.Add(bytes);
}

void JournalledText::Close() {
    CloseIf([] { return true; });
}

bool JournalledText::CloseIf(const std::function<bool()>& isWanted) {
    std::uint64_t number = 0;
    return records_.Carry(number, [&] {
        return writer_->CloseIf([&] {
            if (!isWanted()) return false;
            FileChange change = change_(content_.Get());
            const bool isReplacing = change.before.has_value();
            number = records_.Plan(std::move(change));
            // Nobody else knows what was there.
            if (isReplacing) records_.MakeDurable();
            return true;
        });
    });
}

JournalledBatch::JournalledBatch(Files& files, FileRecords& records, Change change, Done done)
    : records_(records),
      change_(std::move(change)),
      done_(std::move(done)),
      batch_(files.CreateTexts([this](const Failure* failure) { Told(failure); })) {}

void JournalledBatch::Write(std::string_view path, std::string_view bytes) {
    WrittenContent content;
    content.Add(bytes);
    FileChange change = change_(path, content.Get());
    isReplacing_ = isReplacing_ || change.before;
    current_ = records_.Plan(std::move(change));
    const std::uint64_t number = current_;
    records_.Carry(number, [&] { batch_->Write(path, bytes); });
    if (current_ != 0) waiting_.push_back(std::exchange(current_, 0));
    // Before the batch gives them their names by itself, without durable records.
    if (waiting_.size() + 1 >= TextBatch::MostWaiting) Close();
}

void JournalledBatch::Close() {
    if (isReplacing_) records_.MakeDurable();
    isReplacing_ = false;
    batch_->Close();
}

void JournalledBatch::Told(const Failure* failure) {
    std::uint64_t number = 0;
    if (waiting_.empty()) {
        number = std::exchange(current_, 0);
    } else {
        number = waiting_.front();
        waiting_.pop_front();
    }
    if (failure != nullptr) records_.Failed(number, failure->what());
    done_(failure);
}

}  // namespace quillon
