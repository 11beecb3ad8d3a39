// Where a name's extension starts: the last "." of its last path component, unless that "."
// starts the component (".profile" has none). Shared by the naming and ordering helpers.
#pragma once

#include <string_view>

namespace tarnvik::file_name_parts {

// The position of the "." before the extension, or npos when the name has none.
inline std::size_t extensionDot(std::u16string_view name) {
  for (std::size_t at = name.size(); at-- > 0;) {
    if (name[at] == u'/') return std::u16string_view::npos;
    if (name[at] == u'.') return at == 0 || name[at - 1] == u'/' ? std::u16string_view::npos : at;
  }
  return std::u16string_view::npos;
}

}  // namespace tarnvik::file_name_parts
