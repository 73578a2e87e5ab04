#include "jet/storage/header.h"

#include <algorithm>
#include <array>
#include <bit>
#include <numeric>
#include <string>
#include <string_view>
#include <utility>

#include "jet/error.h"
#include "jet/storage/journal.h"

namespace jet::storage {

namespace {

constexpr std::size_t NameOffset = 4, VersionOffset = 0x14;
constexpr std::string_view JetName("Standard Jet DB\0", 16), AceName("Standard ACE DB\0", 16);
constexpr std::uint32_t Jet3 = 0, Jet4 = 1;

constexpr std::size_t MaskedOffset = 0x18, MaskedSize = 128;
constexpr std::size_t GlobalMapOffset = 0x18, SecondMapOffset = 0x1C, CatalogOffset = 0x20,
                      CodePageOffset = 0x3C, EncodingKeyOffset = 0x3E, PasswordOffset = 0x42,
                      PasswordSize = 40, BuildOffset = 0x6A, SortOrderOffset = 0x6E,
                      CreatedOffset = 0x72;

/// The stream that part of the header is combined with: RC4 with a constant key.
std::array<std::uint8_t, MaskedSize> MaskStream() {
    constexpr std::array<std::uint8_t, 4> Key{0xC7, 0xDA, 0x39, 0x6B};
    std::array<std::uint8_t, 256> state{};
    std::iota(state.begin(), state.end(), std::uint8_t{0});
    std::uint8_t j = 0;
    for (std::size_t i = 0; i < state.size(); ++i) {
        j = static_cast<std::uint8_t>(j + state[i] + Key[i % Key.size()]);
        std::swap(state[i], state[j]);
    }
    std::array<std::uint8_t, MaskedSize> stream{};
    std::uint8_t i = 0;
    j = 0;
    for (std::uint8_t& byte : stream) {
        ++i;
        j = static_cast<std::uint8_t>(j + state[i]);
        std::swap(state[i], state[j]);
        byte = state[static_cast<std::uint8_t>(state[i] + state[j])];
    }
    return stream;
}

void ApplyMask(Page& header) {
    const auto stream = MaskStream();
    for (std::size_t i = 0; i < stream.size(); ++i)
        header[MaskedOffset + i] ^= stream[i];
}

/// What the password field holds when there is no password: the day of creation, repeated.
std::array<std::uint8_t, PasswordSize> NoPassword(double created) {
    std::array<std::uint8_t, PasswordSize> pattern{};
    // A number that is no date cannot be converted; then nothing equals the pattern but zeros.
    if (!(created > -1e9 && created < 1e9)) return pattern;
    const auto day = static_cast<std::int32_t>(created);
    for (std::size_t i = 0; i < pattern.size(); i += sizeof(day)) {
        Store(std::span(pattern), i, day);
    }
    return pattern;
}

bool HasName(std::span<const std::uint8_t> start, std::string_view name) {
    return std::equal(name.begin(), name.end(), start.begin() + NameOffset,
                      [](char a, std::uint8_t b) { return static_cast<std::uint8_t>(a) == b; });
}

std::string VersionName(std::uint32_t version) {
    switch (version) {
        case Jet3:
            return "Jet 3 (Access 97)";
        case 2:
            return "Access 2007";
        case 3:
            return "Access 2010";
        case 4:
        case 5:
            return "Access 2013 or later";
        default:
            return "unknown number " + std::to_string(version);
    }
}

void CheckUnmasked(const Page& header, const std::string& file) {
    if (Load<std::uint32_t>(header, EncodingKeyOffset) != 0) {
        throw Error(ErrorKind::Encrypted, file + " is encoded; decode it in Access first.");
    }
    const auto pattern = NoPassword(Load<double>(header, CreatedOffset));
    if (!std::equal(pattern.begin(), pattern.end(), header.begin() + PasswordOffset)) {
        throw Error(ErrorKind::Encrypted,
                    file + " is protected by a password; remove it in Access first.");
    }
    if (Load<std::uint32_t>(header, GlobalMapOffset) != 0x100 ||
        Load<PageNumber>(header, CatalogOffset) != 2) {
        throw Error(ErrorKind::Damaged, file + " is damaged: its header names no catalog.");
    }
}

}  // namespace

void CheckHeader(std::span<const std::uint8_t> start, const std::filesystem::path& path) {
    const std::string file = path.string();
    if (start.empty()) throw Error(ErrorKind::NotADatabase, file + " is empty.");
    constexpr std::size_t Recognizable = MaskedOffset;
    if (start.size() < Recognizable || (!HasName(start, JetName) && !HasName(start, AceName))) {
        throw Error(ErrorKind::NotADatabase, file + " is not an Access database.");
    }
    const auto version = Load<std::uint32_t>(start, VersionOffset);
    if (version != Jet4 || HasName(start, AceName)) {
        throw Error(ErrorKind::NotADatabase,
                    file + " is an Access database of another version: " + VersionName(version) +
                        ". Save it in the format of Access 2000 or Access 2002-2003.");
    }
    if (start.size() < PageSize) {
        throw Error(ErrorKind::Damaged, file + " is damaged: it ends within its header.");
    }
    Page header;
    std::copy_n(start.begin(), header.size(), header.begin());
    ApplyMask(header);
    CheckUnmasked(header, file);
}

void CheckHeaderOf(FileSystem& files, const std::filesystem::path& path) {
    const auto facts = files.Look(path);
    if (facts && !facts->otherKind.empty()) {
        throw Error(ErrorKind::NotADatabase, path.string() + " is " +
                                                 std::string(facts->otherKind) +
                                                 " and not an Access database.");
    }
    const auto file = files.Open(path, FileAccess::Read);
    Page start;
    const std::size_t size = file->ReadAt(0, start);
    CheckHeader(std::span(start).first(size), path);
}

Page NewHeader() {
    Page header{};
    const auto bytes = std::span(header);
    header[1] = 1;
    std::copy(JetName.begin(), JetName.end(), header.begin() + NameOffset);
    Store(bytes, VersionOffset, Jet4);
    Store(bytes, GlobalMapOffset, std::uint32_t{0x100});
    Store(bytes, SecondMapOffset, std::uint32_t{0x101});
    for (PageNumber table = 0; table < 4; ++table) {
        Store(bytes, CatalogOffset + table * sizeof(table), table + 2);
    }
    Store(bytes, CodePageOffset, std::uint16_t{1252});
    Store(bytes, BuildOffset, std::uint32_t{0x261C});
    Store(bytes, SortOrderOffset, std::uint16_t{1033});
    // The mask of the security ids depends on this very date.
    Store(bytes, CreatedOffset, std::uint64_t{0x40E4AB3E3BD3853E});
    const auto password = NoPassword(Load<double>(header, CreatedOffset));
    std::copy(password.begin(), password.end(), header.begin() + PasswordOffset);
    ApplyMask(header);

    constexpr std::size_t MarkOffset = 0x98, TextVersionOffset = 0x9C;
    constexpr std::string_view TextVersion = "4.0";
    Store(bytes, MarkOffset, std::uint32_t{1620});
    std::copy(TextVersion.begin(), TextVersion.end(), header.begin() + TextVersionOffset);
    constexpr std::size_t CounterCount = 256;
    for (std::size_t i = 0; i < CounterCount; ++i) {
        Store(bytes, CommitCountersOffset + i * 2, std::uint16_t{0x0100});
    }
    Store(bytes, CommitCountersOffset, std::uint16_t{0x0101});
    return header;
}

}  // namespace jet::storage
