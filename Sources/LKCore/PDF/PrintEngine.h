#pragma once

// What turns a book's HTML into pages. Two kinds: a browser, and a typesetter for where there is no
// browser. Neither ever sees a file but the pictures of the collection, nor a network.

#include <chrono>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "LKCore/Bind/LKBindEngine.h"

namespace lk {

struct PrintJob {
  std::string html;  // the whole document; pictures as "larkspire-asset:///PATH" or "data:"
  std::filesystem::path collectionRoot;
  double widthIn = 8.5;  // the page
  double heightIn = 11;
};

// One run of an engine's processes; they and their files are gone when it is.
class PrintEngine {
 public:
  using Deadline = std::chrono::steady_clock::time_point;

  virtual ~PrintEngine() = default;

  // The PDF. With `pages` ("3-7", from 1) those pages alone, of the same layout. May be called again
  // with changed HTML. Throws LKBindPDFError: `webViewLoadFailed`, `pdfGenerationFailed`, and
  // `timeout` past the deadline.
  virtual std::string print(const PrintJob& job, const std::string& pages, Deadline deadline) = 0;

  // Whether the engine itself fills in page numbers of the contents (`target-counter`).
  virtual bool fillsPageNumbers() const = 0;
};

// The browser; nothing when it is not installed.
std::unique_ptr<PrintEngine> browserPrintEngine();

// The typesetter; nothing when it is not installed.
std::unique_ptr<PrintEngine> typesetterPrintEngine();

// The pictures of diagrams, drawn by the browser: from a text within a "mermaid" fence. Those that
// cannot be drawn are missing; all are where there is no browser or no drawing script. `message`,
// when given, takes the reason why none were.
LKBindDiagrams drawnDiagrams(const std::vector<std::string>& sources,
                             PrintEngine::Deadline deadline, std::string* message = nullptr);

}  // namespace lk
