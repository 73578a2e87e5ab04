#include "changes/preview_texts.h"

#include "platform/ansi.h"
#include "platform/failure.h"

namespace quillon {

void PreviewText::Write(std::string_view text) {
    WriteBytes(Utf8ToAnsi(text));
}

void PreviewText::WriteLine(std::string_view line) {
    Write(line);
    Write("\r\n");
}

void PreviewText::WriteBytes(std::string_view bytes) {
    if (!open_) throw Failure(FailureNumber::BadFileName, shownPath_);
    bytes_ += bytes;
}

bool PreviewText::CloseIf(const std::function<bool()>& isWanted) {
    if (!open_) return true;
    open_ = false;
    if (!isWanted()) return false;
    written_(std::move(bytes_), modified_);
    return true;
}

void PreviewBatch::Write(std::string_view path, std::string_view bytes) {
    WindowsPath parsed = ParseWindowsPath(path);
    check_(parsed);
    waiting_.emplace_back(std::move(parsed), bytes);
}

void PreviewBatch::Close() {
    for (auto& [path, bytes] : std::exchange(waiting_, {})) {
        written_(path, std::move(bytes));
        done_(nullptr);
    }
}

}  // namespace quillon
