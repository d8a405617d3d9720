#include <fcntl.h>

#include <string>
#include <vector>

#include "LarkspireCLI/LKMain.h"

namespace {

// A caller may start us with a standard stream closed. The next file we open would take its number,
// and what is printed would end up in a note. A stand-in that can't be written keeps the place.
void fillStandardStreams() {
  for (const int stream : {0, 1, 2}) {
    if (fcntl(stream, F_GETFD) != -1) continue;
    if (open("/dev/null", stream == 0 ? O_WRONLY : O_RDONLY) != stream) return;
  }
}

}  // namespace

int main(int count, char** words) {
  fillStandardStreams();
  std::vector<std::string> arguments;
  for (int i = 1; i < count; ++i) arguments.emplace_back(words[i]);
  return lk::LKMain::main(arguments);
}
