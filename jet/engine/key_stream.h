#pragma once

#include <optional>
#include <span>
#include <vector>

#include "jet/engine/session.h"

namespace jet::engine {

/// The keys of a result's rows, fetched as they are asked for.
class KeyStream final : public RowStream {
  public:
    KeyStream(Session& session, std::shared_ptr<Plan> plan, StatementLease statement);
    KeyStream(const KeyStream&) = delete;
    KeyStream& operator=(const KeyStream&) = delete;
    ~KeyStream() override { Stop(); }

    /// Whether there is a row at this position, from 0.
    bool Has(std::size_t row);
    /// The keys of a row that is there; 0 stands for a row that an outer join lacks.
    std::span<const RowKey> Keys(std::size_t row) const {
        return std::span(keys_).subspan(row * width_, width_);
    }
    /// Adds a row behind the last one; its position.
    std::size_t Append(std::span<const RowKey> keys);

    /// How many rows had been deleted from the tables when this stream began.
    std::uint64_t DeletionsBefore() const { return deletions_; }
    std::uint64_t DeletionsNow() const;

    bool Reads(const MirrorTable& table) const override;
    void Drain() override;

  private:
    bool FetchOne(bool interruptible);
    void Stop() noexcept;

    Session& session_;
    std::shared_ptr<Plan> plan_;
    std::optional<StatementLease> statement_;  ///< while rows are left in it
    std::size_t width_;
    std::vector<RowKey> keys_;
    std::uint64_t deletions_;
};

}  // namespace jet::engine
