#pragma once

#include "LarkspireCLI/Support/Command.h"

namespace lk {

// `lk attachments list`
class AttachmentsListCommand final : public Command {
 public:
  void declare(ArgumentList& arguments) override;
  void run() override;
};

// `lk attachments orphans`
class AttachmentsOrphansCommand final : public Command {
 public:
  void declare(ArgumentList& arguments) override;
  void run() override;
};

// `lk attachments prune`
class AttachmentsPruneCommand final : public Command {
 public:
  void declare(ArgumentList& arguments) override;
  void run() override;

  bool force = false;
};

}  // namespace lk
