#include "app/views/line_output.h"

#include <chrono>
#include <fmt/format.h>
#include <iterator>

namespace quillon {
namespace {

constexpr std::size_t MostPending = std::size_t{1} << 20;
// A reader that takes a line now and then should get more than remarks on what is missing.
constexpr std::size_t EnoughRoom = MostPending / 2;
constexpr std::chrono::milliseconds Patience{1000};

}  // namespace

void LineOutput::WriteLine(std::string_view line) {
    WritePending();
    const std::size_t most = missing_ > 0 ? EnoughRoom : MostPending;
    if (pending_.size() + line.size() >= most) {
        ++missing_;
        return;
    }
    TellWhatIsMissing();
    pending_.append(line) += '\n';
    WritePending();
}

void LineOutput::Finish() {
    TellWhatIsMissing();
    WritePending();
    while (!pending_.empty() && channel_.WaitForRoom(Patience))
        WritePending();
}

void LineOutput::TellWhatIsMissing() {
    if (missing_ == 0) return;
    fmt::format_to(std::back_inserter(pending_),
                   "({} {} not read in time and left out here; host.log has every record)\n",
                   missing_, missing_ == 1 ? "line was" : "lines were");
    missing_ = 0;
}

void LineOutput::WritePending() {
    pending_.erase(0, channel_.Write(pending_));
    if (channel_.Broken()) pending_.clear();
}

}  // namespace quillon
