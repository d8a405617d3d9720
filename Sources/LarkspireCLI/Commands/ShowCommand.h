#pragma once

#include "LarkspireCLI/Support/Command.h"
#include "LarkspireCLI/Support/NoteReference.h"

namespace lk {

// `lk show`
class ShowCommand final : public Command {
 public:
  void declare(ArgumentList& arguments) override;
  void run() override;

  NoteReference note;
  bool properties = false;
  bool body = false;
  bool tasks = false;
  bool backlinks = false;
};

}  // namespace lk
