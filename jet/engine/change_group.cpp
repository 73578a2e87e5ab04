#include "jet/engine/change_group.h"

#include <algorithm>

namespace jet::engine {

namespace {

/// The copy holds these as floating-point numbers; only the storage knows all their digits.
bool IsInexact(dialect::ValueKind kind) {
    return kind == dialect::ValueKind::Currency || kind == dialect::ValueKind::Decimal;
}

}  // namespace

ChangeGroup::~ChangeGroup() {
    for (auto done = done_.rbegin(); done != done_.rend(); ++done) {
        try {
            Undo(*done);
        } catch (const std::exception&) {
            // The failure that led here is being reported; a row that cannot be put back (the disk
            // is full, say) must not keep the others from it.
            continue;
        }
    }
}

void ChangeGroup::Undo(Done& done) {
    switch (done.kind) {
        case Done::Kind::Inserted:
            done.table->Delete(done.key);
            break;
        case Done::Kind::Updated:
            done.table->Update(done.key, done.old);
            break;
        case Done::Kind::Deleted:
            done.table->Insert(done.row);
            break;
    }
}

RowKey ChangeGroup::Insert(MirrorTable& table, storage::Row values) {
    const RowKey key = table.Insert(values);
    done_.push_back({Done::Kind::Inserted, &table, key, {}, {}});
    return key;
}

void ChangeGroup::Update(MirrorTable& table, RowKey key,
                         std::span<const storage::FieldChange> changes,
                         std::vector<storage::FieldChange> old) {
    const bool inexact = std::any_of(old.begin(), old.end(), [&](const storage::FieldChange& c) {
        return IsInexact(table.Kinds()[c.column]);
    });
    if (inexact) {
        const storage::Row row = table.Read(key);
        for (storage::FieldChange& change : old)
            change.value = row[change.column];
    }
    table.Update(key, changes);
    done_.push_back({Done::Kind::Updated, &table, key, std::move(old), {}});
}

void ChangeGroup::Delete(MirrorTable& table, RowKey key) {
    storage::Row row = table.Read(key);
    table.Delete(key);
    done_.push_back({Done::Kind::Deleted, &table, key, {}, std::move(row)});
}

}  // namespace jet::engine
