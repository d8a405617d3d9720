#pragma once

#include <string>
#include <string_view>

namespace lk {

// Every "%20" of a URL as the byte that it stands for. A "%" without two hexadecimal digits stays
// as it is. The result may be no valid UTF-8.
std::string percentDecoded(std::string_view text);

}  // namespace lk
