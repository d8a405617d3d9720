#include "LKCore/Base/Digest.h"

#include <openssl/crypto.h>
#include <openssl/evp.h>

#include <algorithm>
#include <array>

#include "LKCore/Base/Error.h"

namespace lk {

namespace {

// Fetched once: a fetch for each digest would cost more than hashing a short note. The library's
// configuration file is not read: nothing here depends on it, and it costs start-up time.
const EVP_MD* fetch(const char* name) {
  OPENSSL_init_crypto(OPENSSL_INIT_NO_LOAD_CONFIG, nullptr);
  return EVP_MD_fetch(nullptr, name, nullptr);
}

std::string digestHex(const EVP_MD* kind, std::string_view data, size_t bytes) {
  std::array<unsigned char, EVP_MAX_MD_SIZE> digest{};
  unsigned int size = 0;
  if (kind == nullptr ||
      EVP_Digest(data.data(), data.size(), digest.data(), &size, kind, nullptr) != 1) {
    throw Error("The crypto library could not compute a digest.");
  }
  static constexpr std::string_view kDigits = "0123456789abcdef";
  std::string hex;
  for (size_t i = 0; i < std::min<size_t>(bytes, size); ++i) {
    hex.push_back(kDigits[digest[i] >> 4U]);
    hex.push_back(kDigits[digest[i] & 0x0FU]);
  }
  return hex;
}

}  // namespace

std::string sha256Hex(std::string_view data, size_t bytes) {
  static const EVP_MD* const kind = fetch("SHA256");
  return digestHex(kind, data, bytes);
}

std::string sha1Hex(std::string_view data, size_t bytes) {
  static const EVP_MD* const kind = fetch("SHA1");
  return digestHex(kind, data, bytes);
}

}  // namespace lk
