#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "id3/tag_record.h"

namespace quillon {

class Run;

/// The tag record of a file's ID3 version 1 tag: nine fields, each followed by "|" (see
/// id3/tag_record.h); "" when the file has none. Never throws: failures are logged with
/// "Read ID3 File Error:" and the fields they concern are missing from the record.
std::string ReadID3(Run& run, std::string_view path);

/// The same with another text for the genre's number than the name that the run has read for it.
std::string ReadID3(Run& run, std::string_view path, const GenreName& genreName);

/// The same, telling "no tag" from "could not be read": nothing where a step failed.
std::optional<std::string> ReadWholeID3(Run& run, std::string_view path);
std::optional<std::string> ReadWholeID3(Run& run, std::string_view path,
                                        const GenreName& genreName);

}  // namespace quillon
