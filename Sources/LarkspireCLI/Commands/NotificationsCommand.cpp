#include "LarkspireCLI/Commands/NotificationsCommand.h"

namespace lk {

void NotificationsCommand::declare(ArgumentList& /*arguments*/) {}

void NotificationsCommand::run() {
  throwComesLater("notifications");
}

}  // namespace lk
