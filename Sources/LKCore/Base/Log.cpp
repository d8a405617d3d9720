#include "LKCore/Base/Log.h"

#include <spdlog/sinks/syslog_sink.h>
#include <spdlog/spdlog.h>

#include <memory>

namespace lk::log {

namespace {

void write(spdlog::level::level_enum level, std::string_view message) {
  try {
    static const std::shared_ptr<spdlog::logger> logger = [] {
      auto sink = std::make_shared<spdlog::sinks::syslog_sink_mt>("com.larkspire", 0, LOG_USER,
                                                                  /*enable_formatting=*/false);
      auto made = std::make_shared<spdlog::logger>("com.larkspire", std::move(sink));
      made->set_level(spdlog::level::debug);
      made->set_error_handler([](const std::string&) {});
      return made;
    }();
    logger->log(level, message);
  } catch (const std::exception&) {
    // A trace that cannot be written is not worth failing for.
    return;
  }
}

}  // namespace

void debug(std::string_view message) {
  write(spdlog::level::debug, message);
}
void warning(std::string_view message) {
  write(spdlog::level::warn, message);
}
void error(std::string_view message) {
  write(spdlog::level::err, message);
}

}  // namespace lk::log
