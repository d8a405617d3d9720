#pragma once

// Archives whose bytes depend on what is put in alone.
//
//     const std::string book = zipArchive({{"mimetype", "application/epub+zip", true}}, date);

#include <string>
#include <vector>

#include "LKCore/Base/Error.h"
#include "LKCore/Base/Time.h"

namespace lk {

struct ZipEntry {
  std::string name;  // "word/document.xml"
  std::string bytes;
  bool isStored = false;  // else deflated
};

class ZipError : public Error {
  using Error::Error;
};

// The archive with the entries in their order. Each carries `time`, in UTC and to two seconds,
// before 1980 as 1980. Throws ZipError, ModuleError.
std::string zipArchive(const std::vector<ZipEntry>& entries, Instant time);

}  // namespace lk
