#pragma once

#include <deque>
#include <span>
#include <string_view>

#include "library/row_index.h"
#include "library/rows.h"
#include "library/text_rules.h"
#include "platform/database.h"

namespace quillon {

/// All rows of the table of playlists, read once. Changes are written at once.
class PlaylistTable {
  public:
    /// Throws Failure. The connection must outlive this object.
    explicit PlaylistTable(Connection& connection);
    PlaylistTable(const PlaylistTable&) = delete;
    PlaylistTable& operator=(const PlaylistTable&) = delete;

    /// In the file's order, new ones last.
    std::deque<PlaylistRow>& Rows() { return rows_; }

    /// The first row for this file; null where there is none. `name` is without extension.
    PlaylistRow* Find(std::string_view folder, std::string_view name);

    /// Failure: what the database refuses; then nothing has changed.
    void Add(std::span<const FieldValue> fields);
    void Change(PlaylistRow& row, const FieldValue& field);

  private:
    std::uint32_t HashOf(std::string_view folder, std::string_view name) const;
    void List(std::uint32_t place);

    Connection& connection_;
    TextRules rules_;
    std::deque<PlaylistRow> rows_;
    RowIndex byFile_;
};

}  // namespace quillon
