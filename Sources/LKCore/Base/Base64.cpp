#include "LKCore/Base/Base64.h"

#include <openssl/evp.h>

#include <limits>

#include "LKCore/Base/Error.h"

namespace lk {

namespace {

const unsigned char* raw(std::string_view text) {
  return reinterpret_cast<const unsigned char*>(text.data());
}

int checkedLength(std::string_view text) {
  if (text.size() > std::numeric_limits<int>::max() / 2) throw Error("Too much data for Base64.");
  return static_cast<int>(text.size());
}

}  // namespace

std::string base64Text(std::string_view bytes) {
  std::string out((bytes.size() + 2) / 3 * 4 + 1, '\0');  // and the NUL that is written after it
  const int length = EVP_EncodeBlock(reinterpret_cast<unsigned char*>(out.data()), raw(bytes),
                                     checkedLength(bytes));
  out.resize(static_cast<size_t>(length));
  return out;
}

std::optional<std::string> base64Bytes(std::string_view text) {
  if (text.empty()) return std::string();
  std::string out(text.size() / 4 * 3, '\0');
  const int length =
      EVP_DecodeBlock(reinterpret_cast<unsigned char*>(out.data()), raw(text), checkedLength(text));
  if (length < 0) return std::nullopt;
  const size_t padding = text.ends_with("==") ? 2 : text.ends_with('=') ? 1 : 0;
  out.resize(static_cast<size_t>(length) - padding);
  // The decoder passes over blanks and tolerates bits that no encoder writes.
  if (base64Text(out) != text) return std::nullopt;
  return out;
}

}  // namespace lk
