// The registry between processes: real ones, each with a store of its own.

#include <gtest/gtest.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <functional>
#include <set>
#include <vector>

#include "LKCore/Collections/LKCollectionStore.h"
#include "Support/TempFolder.h"

namespace lk {
namespace {

namespace fs = std::filesystem;
using test::TempFolder;

LKCollectionStore::Folders foldersIn(const TempFolder& home) {
  return {home / "support", home.path(), home / "Documents", std::nullopt, std::nullopt};
}

pid_t start(const std::function<void()>& work) {
  const pid_t child = fork();
  if (child != 0) return child;
  try {
    work();
    _exit(0);
  } catch (const std::exception&) {
    _exit(1);
  }
}

void registerNamed(LKCollectionStore& store, const std::string& name) {
  LKCollectionRegistration registration;
  registration.name = name;
  registration.path = "/notes/" + name;
  store.registerCollection(registration);
}

TEST(RegistrySharing, NoRegistrationIsLost) {
  const TempFolder home;
  std::vector<pid_t> children;
  for (int process = 0; process < 4; ++process) {
    children.push_back(start([&] {
      LKCollectionStore store(foldersIn(home));
      for (int i = 0; i < 25; ++i) {
        registerNamed(store, std::to_string(process) + "-" + std::to_string(i));
      }
    }));
  }
  for (const pid_t child : children) {
    int status = -1;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    EXPECT_EQ(status, 0);
  }
  const LKCollectionStore store(foldersIn(home));
  std::set<std::string> names;
  for (const LKCollectionRecord& record : store.collections()) names.insert(record.name);
  EXPECT_EQ(names.size(), 100U);
  EXPECT_TRUE(store.activeCollection().has_value());
}

TEST(RegistrySharing, OneDefaultIsMadeByManyAtOnce) {
  const TempFolder home;
  std::vector<pid_t> children;
  for (int process = 0; process < 6; ++process) {
    children.push_back(
        start([&] { LKCollectionStore(foldersIn(home)).ensureDefaultCollection(); }));
  }
  for (const pid_t child : children) waitpid(child, nullptr, 0);
  EXPECT_EQ(LKCollectionStore(foldersIn(home)).collections().size(), 1U);
}

TEST(RegistrySharing, AKilledWriterLeavesAWholeFile) {
  const TempFolder home;
  LKCollectionStore(foldersIn(home)).ensureDefaultCollection();
  size_t before = 1;
  for (int round = 0; round < 30; ++round) {
    int saved[2];
    ASSERT_EQ(pipe(saved), 0);
    const pid_t child = start([&] {
      LKCollectionStore store(foldersIn(home));
      for (int i = 0;; ++i) {
        registerNamed(store, std::to_string(i));
        if (write(saved[1], "s", 1) != 1) _exit(2);
      }
    });
    close(saved[1]);
    char first = 0;
    ASSERT_EQ(read(saved[0], &first, 1), 1);
    usleep(static_cast<useconds_t>(round * 137));  // somewhere in a later save
    kill(child, SIGKILL);
    waitpid(child, nullptr, 0);
    close(saved[0]);
    const LKCollectionStore store(foldersIn(home));
    ASSERT_TRUE(store.warnings().empty()) << store.warnings().front();
    ASSERT_GT(store.collections().size(), before);
    before = store.collections().size();
  }
}

}  // namespace
}  // namespace lk
