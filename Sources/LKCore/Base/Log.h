#pragma once

// Traces for whoever looks into a problem; never a message to the user. They go to the system
// log under the name "com.larkspire" and nowhere else. The log is opened at the first message.
// A failing log is ignored.

#include <string_view>

namespace lk::log {

void debug(std::string_view message);
void warning(std::string_view message);
void error(std::string_view message);

}  // namespace lk::log
