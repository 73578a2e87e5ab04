#pragma once

#include <vector>

#include "jet/engine/session.h"

namespace jet::engine {

/// Changes that are made all or none: the destructor undoes them unless Keep() was called.
class ChangeGroup {
  public:
    ChangeGroup() = default;
    ChangeGroup(const ChangeGroup&) = delete;
    ChangeGroup& operator=(const ChangeGroup&) = delete;
    ~ChangeGroup();

    RowKey Insert(MirrorTable& table, storage::Row values);
    /// `old` holds what stood in the changed columns.
    void Update(MirrorTable& table, RowKey key, std::span<const storage::FieldChange> changes,
                std::vector<storage::FieldChange> old);
    void Delete(MirrorTable& table, RowKey key);

    void Keep() { done_.clear(); }

  private:
    struct Done {
        enum class Kind { Inserted, Updated, Deleted };
        Kind kind;
        MirrorTable* table;
        RowKey key;
        std::vector<storage::FieldChange> old;
        storage::Row row;
    };
    static void Undo(Done& done);

    std::vector<Done> done_;
};

}  // namespace jet::engine
