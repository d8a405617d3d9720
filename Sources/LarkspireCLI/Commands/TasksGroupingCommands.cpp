#include "LarkspireCLI/Commands/TasksGroupingCommands.h"

namespace lk {

void TasksProjectsCommand::declare(ArgumentList& /*arguments*/) {}

void TasksProjectsCommand::run() {
  throwComesLater("tasks projects");
}

void TasksContextsCommand::declare(ArgumentList& /*arguments*/) {}

void TasksContextsCommand::run() {
  throwComesLater("tasks contexts");
}

}  // namespace lk
