#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

/// Places and constants of page 0; docs/mdb-format.md, section 2.
namespace jet::storage::header_format {

constexpr std::size_t NameOffset = 0x04;
constexpr std::string_view JetName("Standard Jet DB\0", 16), AceName("Standard ACE DB\0", 16);
constexpr std::size_t VersionOffset = 0x14;
constexpr std::uint32_t Jet3 = 0, Jet4 = 1;  ///< values there; Access 2007 and later have more

/// What is combined with a key stream, and what lies in it.
constexpr std::size_t MaskedOffset = 0x18, MaskedSize = 128;
constexpr std::size_t FreePagesOffset = 0x18;  ///< row pointer: map of the free pages
constexpr std::uint32_t FreePagesRow = 0x100;  ///< row 0 of page 1
constexpr std::size_t SecondMapOffset = 0x1C;  ///< row pointer: a map that stays empty
constexpr std::uint32_t SecondMapRow = 0x101;
constexpr std::size_t SystemTablesOffset = 0x20;  ///< definition pages of four tables
constexpr std::uint32_t FirstSystemTable = 2, SystemTables = 4;
constexpr std::size_t CodePageOffset = 0x3C;
constexpr std::uint16_t WesternEuropean = 1252;
constexpr std::size_t EncodingKeyOffset = 0x3E;  ///< 0: the pages are not enciphered
constexpr std::size_t PasswordOffset = 0x42, PasswordSize = 40;
constexpr std::size_t BuildOffset = 0x6A;  ///< of the engine that has made the file
constexpr std::uint32_t Build = 0x261C;
constexpr std::size_t SortOrderOffset = 0x6E;  ///< its language
constexpr std::size_t CreatedOffset = 0x72;    ///< a date
/// The mask of the security ids depends on this very date, a double.
constexpr std::uint64_t Created = 0x40E4AB3E3BD3853E;

constexpr std::size_t MarkerOffset = 0x98;
constexpr std::uint32_t Marker = 1620;
constexpr std::size_t VersionTextOffset = 0x9C;
constexpr std::string_view VersionText = "4.0";

/// Counters that tell the states of a file apart, and those of a new one.
constexpr std::size_t CommitCountersOffset = 0xE00, CommitCountersSize = 512;
constexpr std::uint16_t FirstNewCounter = 0x0101, NewCounter = 0x0100;

}  // namespace jet::storage::header_format
