#include "LarkspireCLI/Support/Output.h"

#include <cerrno>
#include <cstdio>
#include <string>

#include "LKCore/Base/Json.h"
#include "LarkspireCLI/Support/GlobalOptions.h"

namespace lk {

namespace {

// The errno of the first failed write to standard output: stdio keeps only that there was one.
int firstFailure = 0;

void noteFailure(bool failed) {
  if (failed && firstFailure == 0) firstFailure = errno != 0 ? errno : EIO;
}

void put(std::FILE* stream, std::string_view text) {
  const bool failed = std::fwrite(text.data(), 1, text.size(), stream) != text.size();
  if (stream == stdout) noteFailure(failed);
}

}  // namespace

void printLine(std::string_view text) {
  put(stdout, text);
  put(stdout, "\n");
}

void printText(std::string_view text) {
  put(stdout, text);
}

void printError(std::string_view text) {
  noteFailure(std::fflush(stdout) != 0);
  put(stderr, std::string(text) + "\n");
}

void printNote(const GlobalOptions& options, std::string_view text) {
  if (!options.quiet) printError(text);
}

void printMessage(const GlobalOptions& options, const std::string& message) {
  printLine(options.json ? printJson(Json{{"message", message}}) : message);
}

std::string countOf(size_t count, const std::string& noun) {
  return std::to_string(count) + " " + noun + (count == 1 ? "" : "s");
}

bool outputIsClosed() {
  return firstFailure != 0;
}

int finishOutput() {
  noteFailure(std::fflush(stdout) != 0);
  return firstFailure;
}

}  // namespace lk
