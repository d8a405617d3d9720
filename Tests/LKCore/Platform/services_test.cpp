#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdlib>
#include <map>
#include <optional>
#include <string>

#include "LKCore/Base/Error.h"
#include "LKCore/Platform/LaunchingApplication.h"
#include "LKCore/Platform/Opener.h"
#include "LKCore/Platform/UserDefaults.h"
#include "Support/ChangedVariable.h"
#include "Support/TempFolder.h"

namespace lk {
namespace {

namespace fs = std::filesystem;
using test::ChangedVariable;
using test::TempFolder;
using test::writeWhole;

TEST(UserDefaults, ReadsWhatIsThereAndOfTheRightType) {
  const TempFolder folder;
  const ChangedVariable configuration("XDG_CONFIG_HOME", folder.path().string());
  EXPECT_EQ(userDefaults::integer("seed"), std::nullopt);
  fs::create_directory(folder / "Larkspire");
  const fs::path file = folder / "Larkspire/defaults.json";
  for (const char* bad : {"", "{\"seed\": 2", "[1]", "3", "\xFF"}) {
    writeWhole(file, bad);
    EXPECT_EQ(userDefaults::integer("seed"), std::nullopt) << bad;
  }
  writeWhole(file,
             R"({"seed": -2, "big": 18446744073709551615, "half": 0.5, "on": true, "s": "é"})");
  EXPECT_EQ(userDefaults::integer("seed"), -2);
  EXPECT_EQ(userDefaults::integer("big"), std::nullopt);
  EXPECT_EQ(userDefaults::integer("half"), std::nullopt);
  EXPECT_EQ(userDefaults::integer("on"), std::nullopt);
  EXPECT_EQ(userDefaults::boolean("on"), true);
  EXPECT_EQ(userDefaults::boolean("seed"), std::nullopt);
  EXPECT_EQ(userDefaults::string("s"), "é");
  EXPECT_EQ(userDefaults::string("on"), std::nullopt);
}

std::string openingFailure() {
  try {
    openURL("larkspire://open?id=1&x='; touch owned");
    return "";
  } catch (const Error& error) {
    return error.description();
  }
}

TEST(Opener, HandsOverTheLinkAsOneArgument) {
  const TempFolder folder;
  const ChangedVariable path("PATH", folder.path().string());
  EXPECT_NE(openingFailure().find("Install the package xdg-utils"), std::string::npos);
  const fs::path program = folder / "xdg-open";
  writeWhole(program, "#!/bin/sh\nprintf '%s|' \"$#\" \"$@\" > \"$0.log\"\necho noise\n");
  fs::permissions(program, fs::perms::owner_all);
  EXPECT_EQ(openingFailure(), "");
  EXPECT_EQ(test::readWhole(folder / "xdg-open.log"), "1|larkspire://open?id=1&x='; touch owned|");
  writeWhole(program, "#!/bin/sh\nexit 3\n");
  EXPECT_NE(openingFailure().find("xdg-utils"), std::string::npos);
}

struct Ancestry {
  std::string name;
  std::map<pid_t, pid_t> parents;
  std::map<pid_t, std::string> executables;
  std::optional<std::string> application;
};

class Launching : public testing::TestWithParam<Ancestry> {};

TEST_P(Launching, NamesTheBundleAbove) {
  const auto lookUp = [](const auto& table, pid_t process) {
    const auto found = table.find(process);
    return found == table.end() ? std::nullopt : std::optional(found->second);
  };
  const ProcessTable table{
      .parent = [&](pid_t process) { return lookUp(GetParam().parents, process); },
      .executable = [&](pid_t process) -> std::optional<fs::path> {
        return lookUp(GetParam().executables, process);
      }};
  EXPECT_EQ(applicationName(100, table), GetParam().application);
}

Ancestry chain(std::string name, pid_t levelOfBundle, std::optional<std::string> application) {
  Ancestry result{std::move(name), {}, {}, std::move(application)};
  for (pid_t process = 100; process < 200; ++process) result.parents[process] = process + 1;
  result.executables[99 + levelOfBundle] = "/opt/My Writer.app/Contents/bin/writer";
  return result;
}

INSTANTIATE_TEST_SUITE_P(
    Ancestries, Launching,
    testing::Values(chain("parent", 1, "My Writer"), chain("last_level", 31, "My Writer"),
                    chain("beyond_the_last_level", 32, std::nullopt),
                    Ancestry{"circle", {{100, 101}, {101, 100}}, {}, std::nullopt},
                    Ancestry{"gone", {}, {}, std::nullopt},
                    Ancestry{"first_process_is_not_asked",
                             {{100, 1}},
                             {{1, "/A.app/Contents/a"}},
                             std::nullopt},
                    Ancestry{"not_inside", {}, {{100, "/opt/A.app/bin/a"}}, std::nullopt}),
    [](const auto& row) { return row.param.name; });

TEST(Launching, KnowsTheProcessesOfThisMachine) {
  const ProcessTable table = ProcessTable::ofThisMachine();
  EXPECT_EQ(table.parent(getpid()), getppid());
  EXPECT_EQ(table.executable(getpid()), fs::read_symlink("/proc/self/exe"));
  EXPECT_EQ(table.parent(0), std::nullopt);
}

}  // namespace
}  // namespace lk
