#pragma once

#include <string>
#include <string_view>

/// What every picker page is made of. Page text is plain ASCII with CR LF line ends, so that it
/// reads the same in whatever code page the web server serves it.
namespace quillon {

/// The line end of the pages.
constexpr std::string_view Eol = "\r\n";

/// A text as page text or quoted attribute value: whatever has a meaning in HTML, and every
/// character beyond ASCII, becomes a numeric reference. So nothing in a title can open a tag,
/// close an attribute or begin a piece of server code. Control characters become blanks.
std::string HtmlText(std::string_view text);

/// A text as a string of a script, quotes included: ASCII, and nothing in it has a meaning in HTML
/// or begins a piece of server code.
std::string ScriptText(std::string_view text);

/// A web path or a value in a link: bytes other than letters, digits, "-", ".", "_" and "~" are
/// percent-encoded, slashes stay. The result needs no quotes as an attribute value.
std::string UrlPath(std::string_view path);

/// The same with slashes encoded, too, for values of a link.
std::string UrlValue(std::string_view value);

/// The head that every page starts with: the host's style and header, closed to guests. `title` is
/// the program's own text, without double quotes.
std::string PageHead(std::string_view title);

/// The host's footer, at the end of every page.
std::string PageFoot();

}  // namespace quillon
