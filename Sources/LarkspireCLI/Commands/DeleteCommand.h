#pragma once

#include "LarkspireCLI/Support/Command.h"
#include "LarkspireCLI/Support/NoteReference.h"

namespace lk {

// `lk delete`
class DeleteCommand final : public Command {
 public:
  void declare(ArgumentList& arguments) override;
  void run() override;

  NoteReference note;
  bool permanent = false;
  bool emptyTrash = false;
};

}  // namespace lk
