#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace quillon {

/// Whether a tag's value, which is not empty, and the expected one agree over the length of the
/// shorter, letter case aside: a field of 30 bytes cuts long texts. Characters that the ANSI code
/// page lacks may stand as "?" in a tag, and agree as such. A few ANSI texts happen to be UTF-8,
/// too; they agree with either reading.
bool TagAgrees(std::string_view value, std::string_view expected);

/// The same with the name of a file or folder, which cannot hold every character: "AC/DC" agrees
/// with the folder AC-DC.
bool TagAgreesWithName(std::string_view value, std::string_view name);

/// The same with the title in a file's name. A tag that says the beginning of what stands behind a
/// number or a dash ("01 - A title that no tag can hold") agrees, too: it has nothing to add to the
/// name. When it says all of that, it does not: then the name holds more than the title.
bool TagAgreesWithTitle(std::string_view value, std::string_view title);

/// Whether the name is the whole value, as far as a name can hold it.
bool IsNameOf(std::string_view value, std::string_view name);

/// What may be left of a longer text in a field of 30 bytes: as the code page has it, and in UTF-8;
/// some programs keep a last zero byte. Nothing of a text that has room there.
std::vector<std::string> CutTexts(std::string_view text);

/// Whether a name is no more than what such a field has left of the value.
bool IsCutOf(std::string_view name, std::string_view value);

/// Whether the value has characters that the names made of tags do not have.
bool HoldsMoreThanNames(std::string_view value);

}  // namespace quillon
