#include "LKCore/PDF/BrowserConnection.h"

#include <unistd.h>

#include <cstdlib>
#include <string_view>
#include <utility>
#include <vector>

#include "LKCore/Base/Text.h"
#include "LKCore/PDF/BrowserHyphenation.h"
#include "LKCore/PDF/LKBindPDFRenderer.h"
#include "LKCore/Platform/Directories.h"
#include "LKCore/Platform/Files.h"
#include "LKCore/Platform/ProcessStart.h"

namespace lk {

namespace fs = std::filesystem;

namespace {

constexpr size_t kLongestMessage = size_t{256} << 20;  // bytes
constexpr const char* kPatterns = "/usr/share/hyphen/hyph_en_US.dic";

// The user's fonts alone follow into the folder that the browser takes for its home.
void linkFonts(const fs::path& folder) {
  const auto link = [&](const fs::path& fonts, const fs::path& name) {
    std::error_code missing;
    if (fs::is_directory(fonts, missing)) fs::create_directory_symlink(fonts, name, missing);
  };
  link(directories::applicationSupport() / "fonts", folder / "data" / "fonts");
  link(directories::home() / ".fonts", folder / ".fonts");
}

void makeProfile(const fs::path& folder) {
  for (const char* name : {"profile", "data", "tmp"}) createFolders(folder / name);
  linkFonts(folder);
  if (const auto patterns = fileInfo(kPatterns); patterns && patterns->isRegular) {
    addHyphenation(readFile(kPatterns), folder / "profile");
  }
}

std::vector<std::string> browserArguments(const fs::path& folder) {
  std::vector<std::string> arguments = {
      "--headless",
      "--remote-debugging-pipe",
      "--user-data-dir=" + (folder / "profile").string(),
      "--host-resolver-rules=MAP * ~NOTFOUND",
      "--no-proxy-server",
      "--disable-gpu",
      "--disable-quic",
      "--disable-background-networking",
      "--disable-sync",
      "--disable-extensions",
      "--disable-default-apps",
      "--disable-dev-shm-usage",
      "--disable-breakpad",
      "--no-first-run",
      "--no-default-browser-check",
      "--password-store=basic",
      "--lang=en-US",
  };
  if (geteuid() == 0) arguments.emplace_back("--no-sandbox");
  return arguments;
}

std::vector<std::string> browserEnvironment(const fs::path& folder) {
  const char* path = std::getenv("PATH");
  return {
      std::string("PATH=") + (path == nullptr ? "/usr/bin:/bin" : path),
      "HOME=" + folder.string(),
      "XDG_DATA_HOME=" + (folder / "data").string(),
      "TMPDIR=" + (folder / "tmp").string(),
      "LANG=C.UTF-8",
      "TZ=UTC",
      "DBUS_SESSION_BUS_ADDRESS=disabled:",
  };
}

// The last of what the browser had to say.
std::string lastLines(std::string_view words) {
  constexpr size_t kLines = 3;
  std::vector<std::string_view> lines = text::splitLines(text::trimmed(words));
  std::string result;
  for (size_t i = lines.size() > kLines ? lines.size() - kLines : 0; i < lines.size(); ++i) {
    if (!result.empty()) result += ' ';
    result += text::trimmed(lines[i]);
  }
  return result.empty() ? "it said nothing" : result;
}

}  // namespace

fs::path browserProgram() {
  for (const char* name : {"chromium", "chromium-browser", "google-chrome"}) {
    if (auto program = programOnPath(name)) return *std::move(program);
  }
  return {};
}

BrowserConnection::BrowserConnection(const fs::path& program)
    : process_({.path = program,
                .prepare = makeProfile,
                .arguments = browserArguments,
                .environment = browserEnvironment}) {}

void BrowserConnection::exchange(std::string_view& toSend, Deadline deadline) {
  switch (process_.exchange(toSend, received_, deadline)) {
    case OwnedProcess::Channel::open:
      break;
    case OwnedProcess::Channel::late:
      throw LKBindPDFError::timeout();
    case OwnedProcess::Channel::ended:
      throw BrowserError("the browser ended: " + lastLines(process_.log() + received_));
  }
  if (received_.size() > kLongestMessage) throw BrowserError("the browser's answer is too long");
}

int64_t BrowserConnection::send(const std::string& method, Json parameters,
                                const std::string& session, Deadline deadline) {
  Json message = {{"id", ++sent_}, {"method", method}, {"params", std::move(parameters)}};
  if (!session.empty()) message["sessionId"] = session;
  std::string bytes = message.dump(-1, ' ', false, Json::error_handler_t::replace);
  bytes += '\0';
  for (std::string_view rest = bytes; !rest.empty();) exchange(rest, deadline);
  return sent_;
}

Json BrowserConnection::receive(Deadline deadline) {
  size_t end = received_.find('\0', searched_);
  while (end == std::string::npos) {
    searched_ = received_.size();
    std::string_view nothing;
    exchange(nothing, deadline);
    end = received_.find('\0', searched_);
  }
  Json message = parseJson(std::string_view(received_).substr(0, end));
  received_.erase(0, end + 1);
  searched_ = 0;
  if (onEvent_ && message.contains("method")) {
    onEvent_(message["method"].get<std::string>(), message["params"], deadline);
  }
  return message;
}

Json BrowserConnection::call(const std::string& method, Json parameters, const std::string& session,
                             Deadline deadline) {
  const int64_t number = send(method, std::move(parameters), session, deadline);
  while (true) {
    Json message = receive(deadline);
    if (integerMember(message, "id") != number) continue;
    if (message.contains("error")) {
      throw BrowserError(method + ": " + message["error"].value("message", "refused"));
    }
    return std::move(message["result"]);
  }
}

}  // namespace lk
