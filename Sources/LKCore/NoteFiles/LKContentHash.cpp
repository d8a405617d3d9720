#include "LKCore/NoteFiles/LKContentHash.h"

#include "LKCore/Base/Digest.h"

namespace lk {

namespace {

constexpr size_t kDigestBytes = 8;

}  // namespace

std::string computeContentHash(std::string_view text) {
  return computeRawDigest(text);
}

std::string computeRawDigest(std::string_view data) {
  return sha256Hex(data, kDigestBytes);
}

}  // namespace lk
