// Runs the transcripts in Tests/Transcripts: sessions at a shell, with what the tool prints.
//
// A line "$ COMMAND" is run by sh in a fresh home that holds a copy of the sample collection as
// Garden; `lk` is the built tool. The lines up to the next command are what it must print, standard
// error included, and "[status N]" stands after one that does not end with 0. What differs from
// run to run reads <UUID>, <DATE> and <HOME>.
//
//     LK_RECORD=1 ctest -R Transcripts     writes down anew what the tool prints; read the diff

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

#include "LKCore/Base/Pattern.h"
#include "LKCore/Base/Text.h"
#include "Support/Process.h"
#include "Support/TempFolder.h"

namespace lk {
namespace {

namespace fs = std::filesystem;

std::vector<fs::path> transcripts() {
  std::vector<fs::path> files;
  for (const auto& entry : fs::directory_iterator(fs::path(LK_SOURCE_ROOT) / "Tests/Transcripts")) {
    if (entry.path().extension() == ".txt") files.push_back(entry.path());
  }
  std::ranges::sort(files);
  return files;
}

std::string withoutVolatileParts(std::string output, const fs::path& home) {
  static const Pattern uuid("[0-9A-Fa-f]{8}(?:-[0-9A-Fa-f]{4}){3}-[0-9A-Fa-f]{12}");
  static const Pattern date(R"(\d{4}-\d\d-\d\dT\d\d:\d\d:\d\dZ)");
  output = text::replacingAll(output, home.string(), "<HOME>");
  // In JSON every slash of the path is escaped.
  output = text::replacingAll(output, text::replacingAll(home.string(), "/", "\\/"), "<HOME>");
  return date.replacingAll(uuid.replacingAll(output, "<UUID>"), "<DATE>");
}

// What a shell would show of the command, the command line included.
std::string played(const std::string& command, const test::Sandbox& sandbox) {
  const std::string script =
      "PATH=" + fs::path(LK_TOOL_PATH).parent_path().string() + ":$PATH\nexec 2>&1\n" + command;
  const test::ProcessResult result = sandbox.run("/bin/sh", {"-c", script});
  std::string shown = "$ " + command + "\n" + withoutVolatileParts(result.out, sandbox.home());
  if (!shown.ends_with('\n')) shown += "\n[no line feed at the end]\n";
  if (result.status != 0) shown += "[status " + std::to_string(result.status) + "]\n";
  return shown;
}

// Everything but the commands' output is kept: comments and blank lines before the first command.
std::string replayed(const std::string& transcript) {
  const test::Sandbox sandbox;
  fs::copy(fs::path(LK_SOURCE_ROOT) / "Samples/Garden", sandbox.home() / "Garden",
           fs::copy_options::recursive);
  std::string result;
  bool started = false;
  for (const std::string_view line : text::split(transcript, '\n')) {
    if (line.starts_with("$ ")) {
      started = true;
      result += played(std::string(line.substr(2)), sandbox);
    } else if (!started) {
      result.append(line).push_back('\n');
    }
  }
  return result;
}

class Transcripts : public testing::TestWithParam<fs::path> {};

TEST_P(Transcripts, ReadAsWritten) {
  const std::string expected = test::readWhole(GetParam());
  const std::string actual = replayed(expected);
  if (std::getenv("LK_RECORD") != nullptr) {
    test::writeWhole(GetParam(), actual);
  } else {
    EXPECT_EQ(actual, expected);
  }
}

INSTANTIATE_TEST_SUITE_P(Sessions, Transcripts, testing::ValuesIn(transcripts()),
                         [](const testing::TestParamInfo<fs::path>& row) {
                           return text::replacingAll(row.param.stem().string(), "-", "_");
                         });

}  // namespace
}  // namespace lk
