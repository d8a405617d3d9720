// Which folder a run works on. Each case is a process of its own with a home of its own, because
// the registry and the run's state belong to a process.

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <functional>
#include <string>

#include "LKCore/Collections/LKCollectionPath.h"
#include "LKCore/Collections/LKCollectionStore.h"
#include "LarkspireCLI/Support/AppContainerRegistry.h"
#include "LarkspireCLI/Support/CLIActiveCollection.h"
#include "LarkspireCLI/Support/CLIError.h"
#include "LarkspireCLI/Support/CollectionLocation.h"
#include "Support/TempFolder.h"

namespace lk {
namespace {

namespace fs = std::filesystem;
using test::readWhole;
using test::TempFolder;
using test::writeWhole;

constexpr const char* kGarden = "6F0C2A9E-41B7-4E55-9A7C-0E1B2C3D4E5F";
constexpr const char* kGardening = "6F0C2A9E-41B7-4E55-9A7C-0E1B2C3D4E60";
constexpr const char* kElsewhere = "6F0C2A9E-41B7-4E55-9A7C-0E1B2C3D4E61";
constexpr const char* kUnknown = "6F0C2A9E-41B7-4E55-9A7C-0E1B2C3D4E62";
constexpr const char* kNotFound =
    "[3] Collection not found. Is iCloud Drive enabled?\n"
    "  Hint: You can specify a collection path with --collection /path/to/collection";
constexpr const char* kRefused =
    ", because macOS doesn't allow the app you ran lk from to open Larkspire' data.\n"
    "  Pass the collection's folder instead: --collection /path/to/folder\n"
    "  Or allow it: System Settings ▸ Privacy & Security ▸ Files & Folders ▸ the app you ran lk "
    "from ▸ Larkspire. https://larkspire.example/cli/permissions/";
constexpr const char* kHealed =
    "Note: the CLI's active collection no longer exists; using the default collection. (Run `lk "
    "collections` to see current collections.)\n";
constexpr const char* kAppSupport =
    "Library/Containers/com.larkspire.Larkspire-Mac/Data/Library/Application Support/Larkspire";

std::string row(const std::string& id, const std::string& name, const fs::path& path,
                const std::string& more = "") {
  return R"({"id":")" + id + R"(","name":")" + name + R"(","path":")" + path.string() + "\"" +
         more + "}";
}

class Location : public testing::Test {
 protected:
  Location() {
    fs::permissions(home_.path(), fs::perms::all);
    for (const char* name : {"garden", "gardening", "elsewhere", "loose"}) {
      fs::create_directory(home_ / name);
    }
    fs::create_directory_symlink(home_ / "garden", home_ / "link");
    writeWhole(home_ / "file", "");
  }

  fs::path support() const { return home_ / ".local/share/Larkspire"; }

  void writeToolRegistry() const {
    fs::create_directories(support());
    writeWhole(support() / "collections.json",
               std::string(R"({"activeCollectionID":")") + kGarden + R"(","collections":[)" +
                   row(kGarden, "Garden", home_ / "garden", R"(,"mode":"readOnly")") + "," +
                   row(kGardening, "Gardening", home_ / "gardening") + "]}");
  }

  void writeAppRegistry() const {
    fs::create_directories(home_ / kAppSupport / "caches");
    writeWhole(home_ / kAppSupport / "collections.json",
               R"({"collections":[{"name":"broken"},)" +
                   row(kElsewhere, "Elsewhere", home_ / "elsewhere", R"(,"mode":"readOnly")") +
                   "]}");
  }

  void choose(const std::string& id, const fs::path& path) const {
    fs::create_directories(support());
    writeWhole(support() / "cli-active-collection", id + "\n" + path.string() + "\n");
  }

  // The answer to `question`, asked at home, and before it what was said on standard error. A CLIError is "[STATUS] MESSAGE". The home's path reads "~".
  std::string ask(const std::function<std::string()>& question) const {
    const fs::path out = answers_ / "answer";
    const pid_t child = fork();
    if (child == 0) answer(question, out);
    int status = -1;
    waitpid(child, &status, 0);
    if (status != 0) return "ended with " + std::to_string(status);
    std::string text = readWhole(out);
    fs::remove(out);
    for (size_t at; (at = text.find(home_.path().string())) != std::string::npos;) {
      text.replace(at, home_.path().string().size(), "~");
    }
    return text;
  }

  std::string locate(std::optional<std::string> reference, bool quiet = false) const {
    return ask([&] { return resolvedCollection(reference, quiet).string(); });
  }

  TempFolder home_;

 private:
  [[noreturn]] void answer(const std::function<std::string()>& question,
                           const fs::path& out) const {
    const int file = open(out.c_str(), O_WRONLY | O_CREAT | O_APPEND, 0666);
    setenv("HOME", home_.path().c_str(), 1);
    for (const char* name : {"XDG_DATA_HOME", "XDG_CONFIG_HOME"}) unsetenv(name);
    fs::current_path(home_.path());
    dup2(file, STDERR_FILENO);
    if (getuid() == 0 && drops_) {
      if (setgid(65534) != 0 || setuid(65534) != 0) _exit(9);
    }
    std::string text;
    try {
      text = question();
    } catch (const CLIError& error) {
      text = "[" + std::to_string(error.exitStatus()) + "] " + error.message();
    }
    fflush(stderr);
    const bool written = write(file, text.data(), text.size()) == static_cast<ssize_t>(text.size());
    _exit(written ? 0 : 8);
  }

 protected:
  bool drops_ = false;  // whether a test that runs as root asks as nobody

 private:
  TempFolder answers_;
};

TEST_F(Location, AReferenceIsAnIdThenANameThenABeginningThenAFolder) {
  writeToolRegistry();
  writeAppRegistry();
  const struct {
    const char* name;
    std::string reference;
    std::string answer;
  } cases[] = {
      {"id", kGardening, "~/gardening"},
      {"an id in lower case", "6f0c2a9e-41b7-4e55-9a7c-0e1b2c3d4e5f", "~/garden"},
      {"the application's id", kElsewhere, "~/elsewhere"},
      {"an id that nobody has", kUnknown, kNotFound},
      {"a name that begins another", "GARDEN", "~/garden"},
      {"the only beginning", "gardeni", "~/gardening"},
      {"the beginning of two, and no path", "gard", kNotFound},
      {"the application's name", "elsewhere", "~/elsewhere"},
      {"a path through a link", (home_ / "link").string(), "~/garden"},
      {"a relative path", "./loose", "~/loose"},
      {"a path with a closing slash", "loose/../loose/", "~/loose"},
      {"a path that is not there", "/no/such/thing", kNotFound},
      {"a path below a file", (home_ / "file/x").string(), kNotFound},
      {"a name too long for a file", std::string(5000, 'x'), kNotFound},
      {"nothing", "", kNotFound},
      {"a file", "file", "[1] The collection is not a folder: ~/file"},
  };
  for (const auto& each : cases) EXPECT_EQ(locate(each.reference), each.answer) << each.name;
}

TEST_F(Location, AnyPathIsGoodEnough) {
  for (const char* name : {"two words", "quo\"te's", "line\nfeed", "Gärten 🌱", " blank "}) {
    fs::create_directory(home_ / name);
    EXPECT_EQ(locate(home_ / name), "~/" + std::string(name));
    choose(kUnknown, home_ / name);
    EXPECT_EQ(ask([] { return CLIActiveCollection::rememberedPath().value_or("none").string(); }),
              "~/" + std::string(name));
  }
}

TEST_F(Location, NamingAFolderLeavesNothingBehind) {
  EXPECT_EQ(locate("loose"), "~/loose");
  EXPECT_EQ(locate("nothing of the kind"), kNotFound);
  EXPECT_FALSE(fs::exists(home_ / ".local"));
  EXPECT_FALSE(fs::exists(home_ / "Documents"));
  fs::create_directory(home_ / "Larkspire");
  EXPECT_EQ(locate("Larkspire"), "~/Documents/Larkspire") << "the default's name comes first";
  EXPECT_TRUE(fs::is_directory(home_ / "Documents/Larkspire"));
}

TEST_F(Location, WithoutAReferenceTheActiveCollectionOrTheDefaultIsUsed) {
  EXPECT_EQ(locate({}), "~/Documents/Larkspire");
  writeToolRegistry();
  EXPECT_EQ(locate({}), "~/garden");
  fs::remove(home_ / "link");
  fs::remove(home_ / "garden");
  EXPECT_EQ(locate({}), "~/Documents/Larkspire") << "the active folder is gone";
  fs::remove_all(home_ / "Documents");
  EXPECT_EQ(locate({}), kNotFound);
  EXPECT_EQ(locate("Garden"), "[1] The collection's folder does not exist: ~/garden");
  fs::create_directories(home_ / "Library/Mobile Documents/iCloud~com~larkspire/Documents");
  EXPECT_EQ(locate({}), "~/Library/Mobile Documents/iCloud~com~larkspire/Documents");
}

TEST_F(Location, TheToolsOwnChoiceComesFirst) {
  writeToolRegistry();
  writeAppRegistry();
  choose(kElsewhere, home_ / "loose");
  EXPECT_EQ(locate({}), "~/elsewhere") << "the registry's path, not the remembered one";
  choose(kGardening, home_ / "loose");
  EXPECT_EQ(locate({}), "~/gardening");
}

TEST_F(Location, AStaleChoiceIsForgottenOnceAndSaid) {
  writeToolRegistry();
  choose(kUnknown, home_ / "loose");
  EXPECT_EQ(locate({}), kHealed + std::string("~/garden"));
  EXPECT_FALSE(fs::exists(support() / "cli-active-collection"));
  EXPECT_EQ(locate({}), "~/garden");
  choose(kUnknown, home_ / "loose");
  EXPECT_EQ(locate({}, true), "~/garden") << "quiet";
}

TEST_F(Location, ADamagedRegistryDoesNotMakeAChoiceStale) {
  writeToolRegistry();
  writeWhole(support() / "collections.json", "{");
  choose(kUnknown, home_ / "loose");
  const std::string answer = locate({});
  EXPECT_TRUE(
      answer.starts_with("Warning: The collection registry ~/.local/share/Larkspire/"
                         "collections.json is damaged: "))
      << answer;
  EXPECT_TRUE(answer.ends_with("\n~/loose")) << answer;
  EXPECT_EQ(locate({}, true), "~/loose");
  EXPECT_EQ(readWhole(support() / "collections.json"), "{");
}

TEST_F(Location, WhatTheApplicationRefusesIsSaid) {
  writeToolRegistry();
  fs::create_directories(home_ / kAppSupport);
  fs::permissions(home_ / kAppSupport, fs::perms::none);
  drops_ = true;
  EXPECT_EQ(locate("Elsewhere"),
            "[1] lk can't look up the collection \"Elsewhere\" by name" + std::string(kRefused));
  EXPECT_EQ(locate("Garden"), "~/garden");
  EXPECT_EQ(locate("loose"), "~/loose");
  choose(kUnknown, home_ / "loose");
  EXPECT_EQ(locate({}), "~/loose") << "the choice is kept and its folder remembered";
  choose(kUnknown, home_ / "gone");
  EXPECT_EQ(locate({}), "[1] lk can't look up the collection chosen with `lk collection switch`" +
                            std::string(kRefused));
}

TEST_F(Location, AHomeThatCannotBeWrittenIsNoObstacleToReading) {
  fs::create_directories(home_ / "Documents/Larkspire");
  fs::permissions(home_.path(),
                  fs::perms::owner_write | fs::perms::group_write | fs::perms::others_write,
                  fs::perm_options::remove);
  drops_ = true;
  EXPECT_EQ(locate({}), "~/Documents/Larkspire");
  EXPECT_FALSE(fs::exists(support()));
}

TEST_F(Location, AFolderReadsItsOwnIndexOnly) {
  writeToolRegistry();
  writeAppRegistry();
  const auto policy = [&](const std::string& folder, bool isExplicit) {
    return ask([&] {
      const CachePolicy found = cachePolicy(home_ / folder, isExplicit);
      const auto* store = std::get_if<StorePolicy>(&found);
      if (store != nullptr) return store->url.filename().string();
      return std::string(std::holds_alternative<AutoPolicy>(found) ? "auto" : "unavailable");
    });
  };
  EXPECT_EQ(policy("elsewhere", true), "unavailable");
  EXPECT_EQ(policy("elsewhere", false), "auto");
  const std::string store = std::string(kElsewhere) + ".store";
  writeWhole(home_ / kAppSupport / "caches" / store, "");
  EXPECT_EQ(policy("elsewhere", true), store);
  EXPECT_EQ(policy("garden", true), "unavailable");
}

TEST_F(Location, TheModeIsThatOfTheFolderInUse) {
  writeToolRegistry();
  writeAppRegistry();
  const auto mode = [&](const char* folder) {
    return ask([&] { return std::string(modeText(collectionMode(home_ / folder))); });
  };
  EXPECT_EQ(mode("link"), "readOnly");
  EXPECT_EQ(mode("gardening"), "larkspire");
  EXPECT_EQ(mode("elsewhere"), "readOnly");
  EXPECT_EQ(mode("loose"), "larkspire");
}

TEST_F(Location, TheRunRemembersItsFolder) {
  EXPECT_EQ(ask([&] {
              resolvedCollection("loose", true);
              const bool same = collectionRun().collectionRoot == home_ / "loose" &&
                                LKCollectionPath::activeDocumentsDirectory() == home_ / "loose" &&
                                collectionRun().cachePolicy == CachePolicy(UnavailablePolicy{});
              return std::string(same && collectionRun().quiet ? "all set" : "differs");
            }),
            "all set");
}

}  // namespace
}  // namespace lk
