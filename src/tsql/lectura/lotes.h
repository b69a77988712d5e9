#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace quimo::tsql {

/// Cuts a script into the texts that are sent one by one: a line that holds nothing but GO, in any
/// case and with blanks around it, ends a text. Lines inside a quoted text, a delimited name or a
/// comment of several lines end nothing. Empty texts are left out.
std::vector<std::string> PartirLotes(std::string_view guion);

}  // namespace quimo::tsql
