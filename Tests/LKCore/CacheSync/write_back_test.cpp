#include "LKCore/CacheSync/LKTaskIDWriteBack.h"

#include <gtest/gtest.h>

#include <atomic>
#include <filesystem>
#include <string>
#include <thread>
#include <vector>

#include "LKCore/Platform/Files.h"
#include "Support/TempFolder.h"

namespace lk {
namespace {

namespace fs = std::filesystem;
using LKTaskIDWriteBack::Outcome;
using test::readWhole;
using test::writeWhole;

TEST(WriteBack, KeepsTheModificationDate) {
  const test::TempFolder folder;
  const fs::path file = folder / "Plan.md";
  const Instant modified = {1'600'000'000, 123'456'000};
  writeWhole(file, "before");
  setModified(file, modified);
  const std::string fingerprint = LKTaskIDWriteBack::fingerprint("before");
  EXPECT_EQ(LKTaskIDWriteBack::write("after", file, fingerprint), Outcome::written);
  EXPECT_EQ(readWhole(file), "after");
  EXPECT_EQ(fileInfo(file)->modified, modified);
}

TEST(WriteBack, LeavesAloneWhatSomebodyChanged) {
  const test::TempFolder folder;
  const fs::path file = folder / "Plan.md";
  const std::string fingerprint = LKTaskIDWriteBack::fingerprint("before");
  for (const std::string changed : {"", "before ", "bef\xFFore"}) {
    writeWhole(file, changed);
    EXPECT_EQ(LKTaskIDWriteBack::write("after", file, fingerprint), Outcome::fileChanged);
    EXPECT_EQ(readWhole(file), changed);
  }
}

TEST(WriteBack, FailsWithoutAFile) {
  const test::TempFolder folder;
  const std::string fingerprint = LKTaskIDWriteBack::fingerprint("");
  EXPECT_EQ(LKTaskIDWriteBack::write("x", folder / "No.md", fingerprint), Outcome::failed);
  EXPECT_EQ(LKTaskIDWriteBack::write("x", folder.path(), fingerprint), Outcome::failed);
  EXPECT_TRUE(fs::is_empty(folder.path()));
}

TEST(WriteBack, LetsOneOfManyRacersWrite) {
  const test::TempFolder folder(test::memoryFolder());
  const fs::path file = folder / "Plan.md";
  const std::string fingerprint = LKTaskIDWriteBack::fingerprint("before");
  for (int round = 0; round < 20; ++round) {
    writeWhole(file, "before");
    std::atomic<int> written = 0;
    std::vector<std::thread> racers;
    for (const char* data : {"one", "two", "three", "four"}) {
      racers.emplace_back([&, data] {
        if (LKTaskIDWriteBack::write(data, file, fingerprint) == Outcome::written) ++written;
      });
    }
    for (std::thread& racer : racers) racer.join();
    ASSERT_EQ(written, 1);
  }
}

}  // namespace
}  // namespace lk
