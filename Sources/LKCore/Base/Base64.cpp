#include "LKCore/Base/Base64.h"

#include <nettle/base64.h>

namespace lk {

std::string base64Text(std::string_view bytes) {
  std::string text(BASE64_ENCODE_RAW_LENGTH(bytes.size()), '\0');
  base64_encode_raw(text.data(), bytes.size(), reinterpret_cast<const uint8_t*>(bytes.data()));
  return text;
}

std::optional<std::string> base64Bytes(std::string_view text) {
  base64_decode_ctx state;
  base64_decode_init(&state);
  std::string bytes(BASE64_DECODE_LENGTH(text.size()), '\0');
  size_t size = bytes.size();
  const bool isRead = base64_decode_update(&state, &size, reinterpret_cast<uint8_t*>(bytes.data()),
                                           text.size(), text.data()) == 1;
  if (!isRead || base64_decode_final(&state) != 1) return std::nullopt;
  bytes.resize(size);
  // The decoder passes over blanks and tolerates bits that no encoder writes.
  if (base64Text(bytes) != text) return std::nullopt;
  return bytes;
}

}  // namespace lk
