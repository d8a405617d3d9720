#include "LKCore/Modules/Zip.h"

#include <cstdint>

#include "LKCore/Modules/OpenPart.h"

namespace lk {

namespace {

struct DOSTime {
  uint16_t time;
  uint16_t date;
};

// The calendar of archives: 1980 to 2107, every second second.
DOSTime dosTimeOf(Instant time) {
  constexpr DOSTime kFirst = {0, (1U << 5U) | 1U};
  constexpr DOSTime kLast = {(23U << 11U) | (59U << 5U) | 29U, (127U << 9U) | (12U << 5U) | 31U};
  const Day day = Day::utc(time);
  if (day.year < 1980) return kFirst;
  if (day.year > 2107) return kLast;
  const auto second = static_cast<unsigned>(time.seconds - day.utcMidnight().seconds);
  const unsigned clock = (second / 3600U) << 11U | (second / 60U % 60U) << 5U | second % 60U / 2U;
  const unsigned date = static_cast<unsigned>(day.year - 1980) << 9U |
                        static_cast<unsigned>(day.month) << 5U | static_cast<unsigned>(day.day);
  return {static_cast<uint16_t>(clock), static_cast<uint16_t>(date)};
}

}  // namespace

std::string zipArchive(const std::vector<ZipEntry>& entries, Instant time) {
  static const OpenPart part(kArchivePart, partsFolder());
  static const auto make = part.function<decltype(larkspireArchive)>("larkspireArchive");
  std::vector<PartZipEntry> passed;
  passed.reserve(entries.size());
  for (const ZipEntry& entry : entries) {
    passed.push_back({partBytes(entry.name), partBytes(entry.bytes), entry.isStored});
  }
  const DOSTime clock = dosTimeOf(time);
  std::string archive;
  std::string error;
  const PartResult result = make(passed.data(), passed.size(), clock.time, clock.date,
                                 partSink(archive), partSink(error));
  if (result != PartResult::done) throw ZipError("The archive could not be written: " + error);
  return archive;
}

}  // namespace lk
