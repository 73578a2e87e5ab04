#pragma once

#include <initializer_list>
#include <string>
#include <string_view>
#include <utility>

namespace quillon {

/// The text of a template file ("player.html"), as it is. std::out_of_range for one that there is
/// not.
std::string_view TemplateText(std::string_view name);

/// Values for the places of a template, by name.
using TemplateValues = std::initializer_list<std::pair<std::string_view, std::string_view>>;

/// A template with its places filled: `{{name}}` takes the value as text, `{{{name}}}` as markup.
/// Text is shown as it is, whatever stands in it, in a page of any encoding; bytes that are no
/// UTF-8 are read as ANSI. std::out_of_range for a place without a value.
std::string FillTemplate(std::string_view name, TemplateValues values = {});

/// A whole page of the server's own: the title, and content that is markup.
std::string PageText(std::string_view title, std::string_view content);

}  // namespace quillon
