#include "jet/storage/header.h"

#include <algorithm>
#include <array>
#include <bit>
#include <numeric>
#include <string>
#include <string_view>
#include <utility>

#include "jet/error.h"
#include "jet/storage/header_format.h"
#include "jet/storage/table_layout.h"

namespace jet::storage {

namespace {

/// The stream that part of the header is combined with: RC4 with a constant key.
std::array<std::uint8_t, header_format::MaskedSize> MaskStream() {
    constexpr std::array<std::uint8_t, 4> Key{0xC7, 0xDA, 0x39, 0x6B};
    std::array<std::uint8_t, 256> state{};
    std::iota(state.begin(), state.end(), std::uint8_t{0});
    std::uint8_t j = 0;
    for (std::size_t i = 0; i < state.size(); ++i) {
        j = static_cast<std::uint8_t>(j + state[i] + Key[i % Key.size()]);
        std::swap(state[i], state[j]);
    }
    std::array<std::uint8_t, header_format::MaskedSize> stream{};
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
        header[header_format::MaskedOffset + i] ^= stream[i];
}

/// What the password field holds when there is no password: the day of creation, repeated.
std::array<std::uint8_t, header_format::PasswordSize> NoPassword(double created) {
    std::array<std::uint8_t, header_format::PasswordSize> pattern{};
    // A number that is no date cannot be converted; then nothing equals the pattern but zeros.
    if (!(created > -1e9 && created < 1e9)) return pattern;
    const auto day = static_cast<std::int32_t>(created);
    for (std::size_t i = 0; i < pattern.size(); i += sizeof(day)) {
        Store(std::span(pattern), i, day);
    }
    return pattern;
}

bool HasName(std::span<const std::uint8_t> start, std::string_view name) {
    return std::equal(name.begin(), name.end(), start.begin() + header_format::NameOffset,
                      [](char a, std::uint8_t b) { return static_cast<std::uint8_t>(a) == b; });
}

std::string VersionName(std::uint32_t version) {
    switch (version) {
        case header_format::Jet3:
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
    if (Load<std::uint32_t>(header, header_format::EncodingKeyOffset) != 0) {
        throw Error(ErrorKind::Encrypted, file + " is encoded; decode it in Access first.");
    }
    const auto pattern = NoPassword(Load<double>(header, header_format::CreatedOffset));
    if (!std::equal(pattern.begin(), pattern.end(),
                    header.begin() + header_format::PasswordOffset)) {
        throw Error(ErrorKind::Encrypted,
                    file + " is protected by a password; remove it in Access first.");
    }
    if (Load<std::uint32_t>(header, header_format::FreePagesOffset) !=
            header_format::FreePagesRow ||
        Load<PageNumber>(header, header_format::SystemTablesOffset) !=
            header_format::FirstSystemTable) {
        throw Error(ErrorKind::Damaged, file + " is damaged: its header names no catalog.");
    }
}

}  // namespace

void CheckHeader(std::span<const std::uint8_t> start, const std::filesystem::path& path) {
    const std::string file = path.string();
    if (start.empty()) throw Error(ErrorKind::NotADatabase, file + " is empty.");
    constexpr std::size_t Recognizable = header_format::MaskedOffset;
    if (start.size() < Recognizable ||
        (!HasName(start, header_format::JetName) && !HasName(start, header_format::AceName))) {
        throw Error(ErrorKind::NotADatabase, file + " is not an Access database.");
    }
    const auto version = Load<std::uint32_t>(start, header_format::VersionOffset);
    if (version != header_format::Jet4 || HasName(start, header_format::AceName)) {
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
    std::copy(header_format::JetName.begin(), header_format::JetName.end(),
              header.begin() + header_format::NameOffset);
    Store(bytes, header_format::VersionOffset, header_format::Jet4);
    Store(bytes, header_format::FreePagesOffset, header_format::FreePagesRow);
    Store(bytes, header_format::SecondMapOffset, header_format::SecondMapRow);
    for (PageNumber table = 0; table < header_format::SystemTables; ++table) {
        Store(bytes, header_format::SystemTablesOffset + table * sizeof(table),
              table + header_format::FirstSystemTable);
    }
    Store(bytes, header_format::CodePageOffset, header_format::WesternEuropean);
    Store(bytes, header_format::BuildOffset, header_format::Build);
    Store(bytes, header_format::SortOrderOffset, GeneralOrder);
    Store(bytes, header_format::CreatedOffset, header_format::Created);
    const auto password = NoPassword(Load<double>(header, header_format::CreatedOffset));
    std::copy(password.begin(), password.end(), header.begin() + header_format::PasswordOffset);
    ApplyMask(header);

    Store(bytes, header_format::MarkerOffset, header_format::Marker);
    std::copy(header_format::VersionText.begin(), header_format::VersionText.end(),
              header.begin() + header_format::VersionTextOffset);
    for (std::size_t i = 0; i < header_format::CommitCountersSize;
         i += sizeof(header_format::NewCounter)) {
        Store(bytes, header_format::CommitCountersOffset + i, header_format::NewCounter);
    }
    Store(bytes, header_format::CommitCountersOffset, header_format::FirstNewCounter);
    return header;
}

}  // namespace jet::storage
