#pragma once

// What a run says: the result on standard output, everything else on standard error. Standard
// output is buffered; the entry point writes out the rest at the end and makes a failed write
// the run's failure, so a command never checks.

#include <cstddef>
#include <string>
#include <string_view>

namespace lk {

struct GlobalOptions;

// The text and a line feed on standard output.
void printLine(std::string_view text);
// The text as it stands on standard output.
void printText(std::string_view text);
// The text and a line feed on standard error, after what standard output already holds.
void printError(std::string_view text);
// The same for a note, warning or hint: dropped under --quiet.
void printNote(const GlobalOptions& options, std::string_view text);

// How a changing command reports: the message as a line, or as {"message": ...} with --json.
void printMessage(const GlobalOptions& options, const std::string& message);

// "1 note", "2 notes".
std::string countOf(size_t count, const std::string& noun);

// True when standard output takes no more, as after `| head`: what is still to come may stay away.
bool outputIsClosed();

// Writes out what is buffered. 0 when every byte of the run has reached standard output, else the
// errno of the first write that failed.
int finishOutput();

}  // namespace lk
