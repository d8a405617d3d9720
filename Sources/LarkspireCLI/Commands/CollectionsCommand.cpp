#include "LarkspireCLI/Commands/CollectionsCommand.h"

namespace lk {

void CollectionsCommand::declare(ArgumentList& /*arguments*/) {}

void CollectionsCommand::run() {
  throwComesLater("collections");
}

}  // namespace lk
