#include "LarkspireCLI/Support/DeepLink.h"

#include "LKCore/Platform/Opener.h"
#include "LarkspireCLI/Support/CLIError.h"

namespace lk {

std::string deepLink(const UUID& note, const std::optional<UUID>& collection) {
  std::string link = "larkspire://open?id=" + note.text();
  if (collection) link += "&collection=" + collection->text();
  return link;
}

void openDeepLink(const UUID& note, const std::optional<UUID>& collection) {
  try {
    openURL(deepLink(note, collection));
  } catch (const Error& error) {
    throw CLIError::general(error.description());
  }
}

}  // namespace lk
