#include "LarkspireCLI/Support/NoteReference.h"

#include "LarkspireCLI/Support/ArgumentList.h"

namespace lk {

void NoteReference::declare(ArgumentList& arguments) {
  arguments.positional("reference", reference, "Note title or UUID.").completion =
      Completion::noteTitle;
  arguments.option("--id", id, "Look up note by UUID.").valueName = "uuid";
}

}  // namespace lk
