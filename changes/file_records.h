#pragma once

#include <cstdint>
#include <exception>
#include <string>
#include <utility>

#include "changes/change.h"
#include "platform/failure.h"

namespace quillon {

/// Records a run's file changes, each with its number.
class FileRecords {
  public:
    /// The sink must outlive this object. `last` is the number of the change before the first.
    explicit FileRecords(ChangeSink& sink, std::uint64_t last = 0) : sink_(sink), last_(last) {}

    /// The number of the last change; that of the next one is higher by one.
    std::uint64_t Last() const { return last_; }

    /// The change may happen when this returns; its number. Failure: it must not.
    std::uint64_t Plan(FileChange change) {
        change.number = last_ + 1;
        sink_.Note(change);
        return ++last_;
    }

    /// What has been planned survives a power cut when this returns. Failure: it must not happen.
    void MakeDurable() {
        sink_.MakeDurable();
        durable_ = last_;
    }

    /// The same, where a power cut would leave too many changes that nobody can tell of.
    void MakeDurableIfMany() {
        if (last_ - durable_ >= MostUntold) MakeDurable();
    }

    /// The change has not come off. Never fails: a journal that takes nothing more says so at the
    /// next change.
    void Failed(std::uint64_t number, const std::string& reason) noexcept;

    /// Does what has been planned under this number, which may be given as late as in there; 0
    /// while nothing is.
    template <typename Work>
    auto Carry(const std::uint64_t& number, Work&& work) {
        try {
            return std::forward<Work>(work)();
        } catch (const std::exception& failure) {
            if (number != 0) Failed(number, DescriptionOf(failure));
            throw;
        }
    }

    template <typename Work>
    void Do(FileChange change, Work&& work) {
        const std::uint64_t number = Plan(std::move(change));
        Carry(number, std::forward<Work>(work));
    }

  private:
    static constexpr std::uint64_t MostUntold = 16;

    ChangeSink& sink_;
    std::uint64_t last_;
    std::uint64_t durable_ = last_;  ///< the last one that is known to be
};

}  // namespace quillon
