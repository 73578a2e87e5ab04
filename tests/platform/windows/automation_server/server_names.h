#pragma once

/// What the tests and the automation server of theirs agree on.
namespace quillon::test_server {

/// The class of the object "Homeseer.application" that the server has.
constexpr const wchar_t* ClassText = L"{5B0E6E0A-3C3E-4B0B-9B57-6A3B1E0C2D41}";

/// Names the file to which each call is appended, a line each: the member, then its arguments, with
/// "|" between. A file of the same name with ".ini" behind it has the settings, and what the object
/// is to refuse.
constexpr const wchar_t* JournalVariable = L"QUILLON_TEST_SERVER";

}  // namespace quillon::test_server
