#pragma once

#include <deque>
#include <span>
#include <string>
#include <string_view>

#include "library/row_index.h"
#include "library/rows.h"
#include "library/text_rules.h"
#include "platform/database.h"

namespace quillon {

/// All songs of the download table, read once. Changes are written at once.
class DownloadTable {
  public:
    /// Throws Failure. The connection must outlive this object.
    explicit DownloadTable(Connection& connection);
    DownloadTable(const DownloadTable&) = delete;
    DownloadTable& operator=(const DownloadTable&) = delete;

    /// In the order of the file, new ones last, wherever they have found room.
    std::deque<SongRow>& Songs() { return songs_; }

    const TextRules& Rules() const { return rules_; }

    /// The first song with these names; null where there is none. Null is no name.
    const SongRow* Find(std::string_view artist, std::string_view album,
                        std::string_view song) const;
    /// The artist's first song in the file, new ones included.
    const SongRow* FirstOf(std::string_view artist) const;

    /// A field that is not held in memory.
    Value Read(const SongRow& song, std::string_view field) const;

    /// The number that the next row gets.
    SongId NextId() const;

    /// Failure: what the database refuses; then nothing has changed.
    SongRow& Add(std::span<const FieldValue> fields);
    void SetLink(SongRow& song, const std::string& fileName);
    void SetGenre(SongRow& song, const std::string& genre);

  private:
    std::uint32_t HashOfNames(std::string_view artist, std::string_view album,
                              std::string_view song) const;
    void List(std::uint32_t place);
    void Change(SongRow& song, const FieldValue& field);

    /// The names that were hashed last: songs of one album mostly follow each other.
    struct Hashed {
        std::string artist, album;
        std::uint32_t hash = 0;
        bool isKnown = false;
    };

    Connection& connection_;
    TextRules rules_;
    SharedTexts texts_;
    mutable Hashed last_;
    std::deque<SongRow> songs_;
    RowIndex byNames_, firstByArtist_;
};

}  // namespace quillon
