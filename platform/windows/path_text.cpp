// The standard library takes the bytes of a path for text of the process's code page, but gives the
// path's text as UTF-8, so that a name does not survive the way there and back. These members,
// which stand in the place of its own, take the bytes for what they are everywhere in this program:
// UTF-8.

#include <algorithm>
#include <cwchar>
#include <locale>
#include <string>
#include <string_view>

#include "platform/utf8.h"
#include "platform/windows/wide_text.h"

namespace std {

using Conversion = codecvt<wchar_t, char, mbstate_t>;

Conversion::result Conversion::do_in(state_type& /*state*/, const extern_type* from,
                                     const extern_type* fromEnd, const extern_type*& fromNext,
                                     intern_type* to, intern_type* toEnd,
                                     intern_type*& toNext) const {
    fromNext = from;
    toNext = to;
    while (fromNext != fromEnd) {
        const string_view rest(fromNext, static_cast<size_t>(fromEnd - fromNext));
        const size_t length = quillon::DecodeUtf8(rest, 0).length;
        const wstring wide = quillon::WideText(rest.substr(0, length));
        if (static_cast<size_t>(toEnd - toNext) < wide.size()) return partial;
        toNext = copy(wide.begin(), wide.end(), toNext);
        fromNext += length;
    }
    return ok;
}

Conversion::result Conversion::do_out(state_type& /*state*/, const intern_type* from,
                                      const intern_type* fromEnd, const intern_type*& fromNext,
                                      extern_type* to, extern_type* toEnd,
                                      extern_type*& toNext) const {
    fromNext = from;
    toNext = to;
    while (fromNext != fromEnd) {
        const bool isPair = *fromNext >= 0xD800 && *fromNext < 0xDC00 && fromEnd - fromNext > 1;
        const size_t length = isPair ? 2 : 1;
        const string narrow = quillon::NarrowText({fromNext, length});
        if (static_cast<size_t>(toEnd - toNext) < narrow.size()) return partial;
        toNext = copy(narrow.begin(), narrow.end(), toNext);
        fromNext += length;
    }
    return ok;
}

int Conversion::do_encoding() const noexcept {
    return 0;  // the lengths of characters differ
}

int Conversion::do_max_length() const noexcept {
    return 4;
}

int Conversion::do_length(state_type& /*state*/, const extern_type* from, const extern_type* end,
                          size_t most) const {
    const extern_type* at = from;
    for (size_t units = 0; at != end; ++units) {
        const string_view rest(at, static_cast<size_t>(end - at));
        const size_t length = quillon::DecodeUtf8(rest, 0).length;
        units += length == 4 ? 1 : 0;
        if (units >= most) break;
        at += length;
    }
    return static_cast<int>(at - from);
}

}  // namespace std
