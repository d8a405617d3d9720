#pragma once

#include "LKCore/Base/Error.h"

namespace lk {

// A refusal of the note file service that says nothing about the disk.
class LKNoteFileError : public Error {
 public:
  enum class Case { readOnly, encoding };

  static LKNoteFileError readOnly() {
    return {Case::readOnly, "This collection is read-only. Notes cannot be created or modified."};
  }
  static LKNoteFileError encoding() { return {Case::encoding, "Could not encode note as UTF-8."}; }

  Case kind() const noexcept { return case_; }

 private:
  LKNoteFileError(Case which, std::string message) : Error(std::move(message)), case_(which) {}

  Case case_;
};

}  // namespace lk
