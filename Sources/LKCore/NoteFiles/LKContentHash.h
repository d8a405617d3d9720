#pragma once

#include <string>
#include <string_view>

namespace lk {

// The short digests by which the system recognises text and files: the first 8 bytes of SHA-256
// as 16 lower-case hex digits. Both throw Error only when the crypto library itself fails.
//
//     computeRawDigest("abc") == "ba7816bf8f01cfea"

// Of a note's text, over its UTF-8 bytes.
std::string computeContentHash(std::string_view text);

// Of a file's bytes as they are on the disk.
std::string computeRawDigest(std::string_view data);

}  // namespace lk
