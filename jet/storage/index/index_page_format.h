#pragma once

#include <cstddef>

#include "jet/storage/format/page.h"

/// Places of an index page; docs/mdb-format.md, section 9.
namespace jet::storage::index_page_format {

constexpr std::size_t FreeBytesOffset = 2;                   ///< room for entries that none uses
constexpr std::size_t DefinitionOffset = 4;                  ///< page of the table's definition
constexpr std::size_t PreviousOffset = 12, NextOffset = 16;  ///< neighbours on the level, 0: none
constexpr std::size_t TailOffset = 20;    ///< node: its last child where that has no entry
constexpr std::size_t PrefixOffset = 24;  ///< length of what entries share with the first
constexpr std::size_t HeightOffset = 26;  ///< levels below
constexpr std::size_t MaskOffset = 27;    ///< a bit for each byte where an entry ends
constexpr std::size_t EntriesOffset = 480, EntryRoom = PageSize - EntriesOffset;
constexpr std::size_t ChildSize = 4;  ///< end of a node's entry: page of the child, big-endian

}  // namespace jet::storage::index_page_format
