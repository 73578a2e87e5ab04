// Settings files of any bytes: whatever is found in them is text, and is found again by its name.

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "platform/ansi.h"
#include "platform/basic_text.h"
#include "platform/portable/ini_file.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using quillon::IniFile;
    const std::string_view bytes(reinterpret_cast<const char*>(data), size);
    const IniFile file = IniFile::Parse(bytes);
    for (const std::string_view section : {"NPFrame", "Plugins", "Drives", ""}) {
        for (const auto& [key, value] : file.Entries(section)) {
            const bool isText = quillon::IsValidUtf8(key) && quillon::IsValidUtf8(value);
            const bool isFound = file.Find(section, quillon::UpperCase(key)) == value;
            if (!isText || !isFound) std::abort();
            quillon::IsNumeric(value);
        }
    }
    return 0;
}
