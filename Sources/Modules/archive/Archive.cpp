// Archives, by libzip and in memory.

#include <zip.h>

#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "Modules/PartGuard.h"

namespace lk::part {

namespace {

// Beyond these an archive has a second, wider directory, which readers of books need not know.
constexpr size_t kMostEntries = 0xFFFE;
constexpr size_t kMostBytes = 0xFFFF0000;

constexpr zip_uint32_t kPlainFileForAll = 0100644U << 16U;

struct SourceFree {
  void operator()(zip_source_t* source) const { zip_source_free(source); }
};
struct ArchiveDiscard {
  void operator()(zip_t* archive) const { zip_discard(archive); }
};
using Source = std::unique_ptr<zip_source_t, SourceFree>;
using Archive = std::unique_ptr<zip_t, ArchiveDiscard>;

void requireArchive(bool isRight, zip_t* archive) {
  if (!isRight) throw std::runtime_error(zip_strerror(archive));
}

void addEntry(zip_t* archive, const PartZipEntry& entry) {
  Source source(zip_source_buffer(archive, entry.bytes.data, entry.bytes.size, 0));
  requireArchive(source != nullptr, archive);
  const std::string name(view(entry.name));
  const zip_int64_t place = zip_file_add(archive, name.c_str(), source.get(), ZIP_FL_ENC_UTF_8);
  if (place < 0) throw std::runtime_error(name + ": " + zip_strerror(archive));
  // The archive has taken it over.
  static_cast<void>(source.release());
  const auto index = static_cast<zip_uint64_t>(place);
  const zip_int32_t method = entry.isStored ? ZIP_CM_STORE : ZIP_CM_DEFLATE;
  requireArchive(zip_set_file_compression(archive, index, method, 0) == 0, archive);
  requireArchive(
      zip_file_set_external_attributes(archive, index, 0, ZIP_OPSYS_UNIX, kPlainFileForAll) == 0,
      archive);
}

std::vector<char> contentOf(zip_source_t* source) {
  zip_stat_t status;
  if (zip_source_stat(source, &status) != 0 || zip_source_open(source) != 0) {
    throw std::runtime_error(zip_error_strerror(zip_source_error(source)));
  }
  std::vector<char> bytes(status.size);
  const zip_int64_t count = zip_source_read(source, bytes.data(), bytes.size());
  zip_source_close(source);
  if (count < 0 || static_cast<size_t>(count) != bytes.size()) {
    throw std::runtime_error("the archive could not be read back");
  }
  return bytes;
}

std::vector<char> written(const PartZipEntry* entries, size_t count) {
  zip_error_t error;
  zip_error_init(&error);
  const Source buffer(zip_source_buffer_create(nullptr, 0, 0, &error));
  if (buffer == nullptr) throw std::runtime_error(zip_error_strerror(&error));
  Archive archive(zip_open_from_source(buffer.get(), ZIP_TRUNCATE, &error));
  if (archive == nullptr) throw std::runtime_error(zip_error_strerror(&error));
  // The archive takes a reference over; `buffer` holds one of its own.
  zip_source_keep(buffer.get());
  for (size_t i = 0; i < count; ++i) addEntry(archive.get(), entries[i]);
  requireArchive(zip_close(archive.get()) == 0, archive.get());
  static_cast<void>(archive.release());
  return contentOf(buffer.get());
}

size_t numberAt(const std::vector<char>& bytes, size_t place, size_t width) {
  size_t number = 0;
  for (size_t i = width; i > 0; --i) {
    number = number << 8U | static_cast<unsigned char>(bytes.at(place + i - 1));
  }
  return number;
}

void putTime(std::vector<char>& bytes, size_t place, uint16_t dosTime, uint16_t dosDate) {
  bytes.at(place) = static_cast<char>(dosTime & 0xFFU);
  bytes.at(place + 1) = static_cast<char>(dosTime >> 8U);
  bytes.at(place + 2) = static_cast<char>(dosDate & 0xFFU);
  bytes.at(place + 3) = static_cast<char>(dosDate >> 8U);
}

// libzip takes every time through the local time zone, where an hour of spring does not exist; so
// the times are set in the finished bytes, in both of the places that an entry has.
void setTimes(std::vector<char>& bytes, size_t count, uint16_t dosTime, uint16_t dosDate) {
  constexpr size_t kEndRecord = 22;
  size_t place = numberAt(bytes, bytes.size() - kEndRecord + 16, 4);
  for (size_t i = 0; i < count; ++i) {
    putTime(bytes, place + 12, dosTime, dosDate);
    putTime(bytes, numberAt(bytes, place + 42, 4) + 10, dosTime, dosDate);
    const size_t more = numberAt(bytes, place + 28, 2) + numberAt(bytes, place + 30, 2) +
                        numberAt(bytes, place + 32, 2);
    place += 46 + more;
  }
}

}  // namespace

}  // namespace lk::part

PartResult larkspireArchive(const PartZipEntry* entries, size_t count, uint16_t dosTime,
                            uint16_t dosDate, PartSink archive, PartSink error) noexcept {
  using namespace lk::part;
  return guarded(error, [&] {
    size_t total = 0;
    for (size_t i = 0; i < count; ++i) total += entries[i].bytes.size;
    if (count == 0 || count > kMostEntries || total > kMostBytes) {
      return failed(error, count == 0 ? "an archive needs an entry" : "too much for one archive");
    }
    std::vector<char> bytes = written(entries, count);
    setTimes(bytes, count, dosTime, dosDate);
    const bool isTaken = put(archive, {bytes.data(), bytes.size()});
    return isTaken ? PartResult::done : failed(error, "out of memory");
  });
}
