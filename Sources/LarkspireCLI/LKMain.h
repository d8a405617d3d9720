#pragma once

#include <string>
#include <vector>

namespace lk::LKMain {

// Runs the tool with the words after the program's name and gives the process's exit status: 0,
// 64 for a command line that can't be understood, a CLIError's own status, 1 for anything else.
// The one place that turns an error into text, on standard error; a CLIError as JSON when "--json"
// is anywhere among the words.
int main(const std::vector<std::string>& arguments);

}  // namespace lk::LKMain
