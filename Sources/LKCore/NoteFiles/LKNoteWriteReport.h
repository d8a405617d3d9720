#pragma once

#include <exception>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "LKCore/Base/UUID.h"

namespace lk {

// What became of one action on many notes, and the words to tell it.
//
//     LKNoteWriteReport report{.action = "move"};
//     try { ...; report.succeed(id); } catch (const std::exception& e) { report.fail(id, title, e); }
//     if (const auto message = report.message()) tell(*message);
//     // Couldn't move “Plan”: the file is missing.
struct LKNoteWriteReport {
  struct Failure {
    UUID noteID;
    std::string title;
    std::string reason;

    bool operator==(const Failure&) const = default;
  };

  std::string action;  // a verb as it follows "Couldn't", e.g. "move"
  std::vector<UUID> succeeded;
  std::vector<Failure> failures;

  void succeed(const UUID& id);
  void fail(const UUID& id, std::string title, const std::exception& error);
  void fail(const UUID& id, std::string title, std::string reason);

  // Why a write failed, for a person: by the errno of a file error, else the error's description.
  static std::string reason(const std::exception& error);

  // One line for one failure; for more, a head and one line each. Nothing when all went well.
  std::optional<std::string> message() const;

  bool operator==(const LKNoteWriteReport&) const = default;
};

}  // namespace lk
