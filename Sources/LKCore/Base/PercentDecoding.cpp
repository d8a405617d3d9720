#include "LKCore/Base/PercentDecoding.h"

#include <cstddef>

namespace lk {

namespace {

// -1 for what is no hexadecimal digit.
int hexDigit(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  return c >= 'A' && c <= 'F' ? c - 'A' + 10 : -1;
}

}  // namespace

std::string percentDecoded(std::string_view text) {
  std::string result;
  result.reserve(text.size());
  for (size_t at = 0; at < text.size(); ++at) {
    const bool mayBeCode = text[at] == '%' && text.size() - at > 2;
    const int high = mayBeCode ? hexDigit(text[at + 1]) : -1;
    const int low = mayBeCode ? hexDigit(text[at + 2]) : -1;
    const bool isCode = high >= 0 && low >= 0;
    result.push_back(isCode ? static_cast<char>(high * 16 + low) : text[at]);
    if (isCode) at += 2;
  }
  return result;
}

}  // namespace lk
