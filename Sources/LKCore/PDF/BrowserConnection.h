#pragma once

// A running browser and the talk with it: commands, their results and events, as its developer
// protocol has them, one JSON text after another with a zero byte between.

#include <cstdint>
#include <filesystem>
#include <functional>
#include <string>

#include "LKCore/Base/Error.h"
#include "LKCore/Base/Json.h"
#include "LKCore/PDF/PrintEngine.h"
#include "LKCore/Platform/OwnedProcess.h"

namespace lk {

// The browser has ended, refused a command or answered what makes no sense; says which.
class BrowserError : public Error {
  using Error::Error;
};

class BrowserConnection {
 public:
  using Deadline = PrintEngine::Deadline;
  using OnEvent =
      std::function<void(const std::string& name, const Json& parameters, Deadline deadline)>;

  // Starts the browser with a fresh profile, no window and no network. It hyphenates English when
  // the patterns for that are installed. Throws FileError.
  explicit BrowserConnection(const std::filesystem::path& program);

  // Hears every event, while a call or `receive` waits; may send.
  void onEvent(OnEvent handler) { onEvent_ = std::move(handler); }

  // The result of the command. Throws BrowserError, and LKBindPDFError `timeout`.
  Json call(const std::string& method, Json parameters, const std::string& session,
            Deadline deadline);
  // Sends the command; nobody waits for its result. Gives its number.
  int64_t send(const std::string& method, Json parameters, const std::string& session,
               Deadline deadline);
  // Waits for one message: hands on an event, and gives back anything else.
  Json receive(Deadline deadline);

 private:
  void exchange(std::string_view& toSend, Deadline deadline);

  OwnedProcess process_;
  OnEvent onEvent_;
  std::string received_;
  size_t searched_ = 0;  // of what was received, without a zero byte
  int64_t sent_ = 0;
};

// The browser on PATH; empty when there is none.
std::filesystem::path browserProgram();

}  // namespace lk
