// SPDX-License-Identifier: MIT
// Pieces of HTML as text.
#pragma once

#include <string>
#include <string_view>

namespace tavelor::reference {

/// Text for an element or a quoted attribute.
std::string escaped(std::string_view text);
/// <code>text</code>
std::string code(std::string_view text);
/// <a href="address">text</a>; `inner` is HTML.
std::string link(std::string_view address, std::string_view inner);
/// What a reader sees of some HTML: without its tags, in one line.
std::string plainOf(std::string_view html);
/// The name of a place on a page as readers of Markdown make it from a heading: in small letters,
/// blanks as hyphens, without punctuation.
std::string anchorOf(std::string_view heading);

}  // namespace tavelor::reference
