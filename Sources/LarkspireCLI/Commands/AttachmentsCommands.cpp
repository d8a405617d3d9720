#include "LarkspireCLI/Commands/AttachmentsCommands.h"

namespace lk {

void AttachmentsListCommand::declare(ArgumentList& /*arguments*/) {}

void AttachmentsListCommand::run() {
  throwComesLater("attachments list");
}

void AttachmentsOrphansCommand::declare(ArgumentList& /*arguments*/) {}

void AttachmentsOrphansCommand::run() {
  throwComesLater("attachments orphans");
}

void AttachmentsPruneCommand::declare(ArgumentList& arguments) {
  arguments.flag("--force", force,
                 "Actually delete. Without this, only reports what would be deleted.");
}

void AttachmentsPruneCommand::run() {
  throwComesLater("attachments prune");
}

}  // namespace lk
