#pragma once

#include "LarkspireCLI/Support/Command.h"
#include "LarkspireCLI/Support/NoteReference.h"

namespace lk {

// `lk archive`
class ArchiveCommand final : public Command {
 public:
  void declare(ArgumentList& arguments) override;
  void run() override;

  NoteReference note;
};

// `lk unarchive`
class UnarchiveCommand final : public Command {
 public:
  void declare(ArgumentList& arguments) override;
  void run() override;

  NoteReference note;
};

}  // namespace lk
