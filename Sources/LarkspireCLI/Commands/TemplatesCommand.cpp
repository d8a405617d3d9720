#include "LarkspireCLI/Commands/TemplatesCommand.h"

namespace lk {

void TemplatesCommand::declare(ArgumentList& /*arguments*/) {}

void TemplatesCommand::run() {
  throwComesLater("templates");
}

}  // namespace lk
