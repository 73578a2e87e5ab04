#pragma once

#include <string>
#include <string_view>

namespace quillon {

class Run;

/// The tag record of a file's ID3 version 1 tag: nine fields, each followed by "|" (see
/// id3/tag_record.h); "" when the file has none. Never throws: failures are logged with
/// "Read ID3 File Error:" and the fields they concern are missing from the record.
std::string ReadID3(Run& run, std::string_view path);

}  // namespace quillon
