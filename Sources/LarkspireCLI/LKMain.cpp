#include "LarkspireCLI/LKMain.h"

#include <algorithm>
#include <cerrno>
#include <exception>
#include <system_error>

#include "LKCore/Base/Json.h"
#include "LarkspireCLI/CommandLine.h"
#include "LarkspireCLI/CompletionScript.h"
#include "LarkspireCLI/CompletionValues.h"
#include "LarkspireCLI/Help.h"
#include "LarkspireCLI/Manual.h"
#include "LarkspireCLI/Support/CLIError.h"
#include "LarkspireCLI/Support/Output.h"

namespace lk {

namespace {

constexpr int usageStatus = 64;

// The JSON record of a failure.
struct ErrorOut {
  std::string error;
  std::string message;

  std::string encoded() const { return printJson(Json{{"error", error}, {"message", message}}); }
};

struct Answer {
  void operator()(const CommandRun& run) const { run.command->run(); }
  void operator()(const HelpRequest& help) const {
    printText(helpText(help.path, Terminal::ofStandardOutput()));
  }
  void operator()(const VersionRequest& /*version*/) const { printLine(LK::version); }
  void operator()(const CompletionRequest& completion) const {
    printText(completionScript(completion.shell));
  }
  void operator()(const CompletionValuesRequest& values) const {
    printText(completionValues(values.words));
  }
  void operator()(const ManualRequest& manual) const { writeManual(manual.words); }
};

int attempt(const std::vector<std::string>& arguments) {
  try {
    std::visit(Answer{}, LK::parseAsRoot(arguments));
    return 0;
  } catch (const UsageError& error) {
    printError(error.description());
    return usageStatus;
  } catch (const CLIError& error) {
    // Not the parsed flags: whatever failed, and wherever the word stands, a script that wrote it
    // is understood.
    const auto given = [&](const char* word) {
      return std::find(arguments.begin(), arguments.end(), word) != arguments.end();
    };
    if (given("--json")) {
      printError(ErrorOut{error.code(), error.message()}.encoded());
    } else {
      printError("Error: " + error.message());
      if (!error.hint().empty() && !given("--quiet")) printError("  Hint: " + error.hint());
    }
    return error.exitStatus();
  } catch (const std::exception& error) {
    printError(std::string("Error: ") + error.what());
    return 1;
  }
}

}  // namespace

int LKMain::main(const std::vector<std::string>& arguments) {
  const int status = attempt(arguments);
  const int failure = finishOutput();
  // A reader that has seen enough and closed its pipe is no failure of the run.
  if (failure == 0 || failure == EPIPE) return status;
  printError("Error: Writing to standard output failed: " +
             std::generic_category().message(failure) + ".");
  return status != 0 ? status : 1;
}

}  // namespace lk
