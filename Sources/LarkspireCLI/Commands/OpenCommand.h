#pragma once

#include "LarkspireCLI/Support/Command.h"
#include "LarkspireCLI/Support/NoteReference.h"

namespace lk {

// `lk open`
class OpenCommand final : public Command {
 public:
  void declare(ArgumentList& arguments) override;
  void run() override;

  NoteReference note;
  bool daily = false;
};

}  // namespace lk
