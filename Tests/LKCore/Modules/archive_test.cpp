// Archives that are the same everywhere, and parts that are not there.

#include <gtest/gtest.h>

#include "LKCore/Modules/OpenPart.h"
#include "LKCore/Modules/Zip.h"
#include "Support/ChangedVariable.h"
#include "Support/TempFolder.h"

namespace lk {
namespace {

const std::vector<ZipEntry> kBookEntries = {{"mimetype", "application/epub+zip", true},
                                            {"OPS/z.xhtml", std::string(5000, 'x')},
                                            {"OPS/a — ä.xhtml", ""}};

TEST(ZipArchive, DependsOnItsEntriesAndTheTimeAlone) {
  struct Row {
    const char* name;
    const char* time;
    std::string stamp;  // as it stands in the archive
  };
  const std::vector<Row> rows = {
      // A clock of New York never showed it.
      {"an hour skipped in spring", "2026-03-08T02:30:11Z", "\xC5\x13\x68\x5C"},
      {"before the calendar of archives", "1969-12-31T23:59:59Z", std::string("\0\0\x21\0", 4)},
      {"after it", "2200-01-01T00:00:00Z", "\x7D\xBF\x9F\xFF"},
  };
  for (const Row& row : rows) {
    const Instant time = *parseISO8601(row.time);
    std::string first;
    for (const char* const name : {"UTC", "America/New_York", "Asia/Kathmandu"}) {
      const test::ChangedVariable zone("TZ", name);
      const std::string archive = zipArchive(kBookEntries, time);
      EXPECT_EQ(archive.substr(10, 4), row.stamp) << row.name << " in " << name;
      if (first.empty()) first = archive;
      EXPECT_EQ(archive, first) << row.name << " in " << name;
    }
  }
}

TEST(ZipArchive, StartsWithTheStoredEntryAndKeepsTheOrder) {
  const std::string archive = zipArchive(kBookEntries, {});
  // Readers of books look for these bytes at this place: no extra field, no descriptor.
  EXPECT_EQ(archive.substr(0, 4), "PK\x03\x04");
  EXPECT_EQ(archive.substr(6, 4), std::string(4, '\0')) << "flags, method";
  EXPECT_EQ(archive.substr(26, 4), std::string("\x08\0\0\0", 4)) << "lengths";
  EXPECT_EQ(archive.substr(30, 28), "mimetypeapplication/epub+zip");
  EXPECT_LT(archive.size(), 1000U) << "the long entry is deflated";
  size_t place = archive.find("PK\x01\x02");
  for (const ZipEntry& entry : kBookEntries) {
    ASSERT_NE(place, std::string::npos);
    EXPECT_EQ(archive.substr(place + 46, entry.name.size()), entry.name);
    place = archive.find("PK\x01\x02", place + 1);
  }
  EXPECT_THROW(zipArchive({{"a", "1"}, {"a", "2"}}, {}), ZipError);
  EXPECT_THROW(zipArchive({}, {}), ZipError);
}

TEST(OpenPart, SaysWhatIsMissing) {
  const test::TempFolder folder;
  const auto refusal = [&] {
    try {
      const OpenPart part(kArchivePart, folder.path());
    } catch (const ModuleError& error) {
      return error.description();
    }
    return std::string();
  };
  const std::string missing = refusal();
  EXPECT_NE(missing.find("“archive” is needed to write archives and is not installed"),
            std::string::npos)
      << missing;
  EXPECT_NE(missing.find("libzip4"), std::string::npos) << missing;
  test::writeWhole(folder / "archive.so", "no shared object");
  const std::string broken = refusal();
  EXPECT_NE(broken.find("cannot be opened"), std::string::npos) << broken;
}

}  // namespace
}  // namespace lk
