#pragma once

// A browser with one page whose every request is answered here or refused.

#include <filesystem>
#include <string>
#include <string_view>

#include "LKCore/PDF/BrowserConnection.h"

namespace lk {

struct BrowserDocument {
  std::string html;
  bool runsScripts = false;        // those that the caller has the page evaluate
  std::filesystem::path pictures;  // the collection; empty: none are served
};

class BrowserPage {
 public:
  using Deadline = BrowserConnection::Deadline;

  // Starts the browser. Throws what BrowserConnection does, and so do `load` and `call`.
  BrowserPage(const std::filesystem::path& program, Deadline deadline);
  BrowserPage(const BrowserPage&) = delete;
  BrowserPage& operator=(const BrowserPage&) = delete;

  // Shows the document under a made-up address and returns when it and its pictures are there.
  // Pictures come from `pictures` alone ("larkspire-asset:///PATH" in src, or a path below the
  // collection). A later document takes the place of the one before.
  void load(BrowserDocument document, Deadline deadline);

  Json call(const std::string& method, Json parameters, Deadline deadline);

 private:
  void hear(const std::string& name, const Json& parameters, Deadline deadline);
  void answer(const Json& request, Deadline deadline);
  void fulfil(const std::string& request, Json headers, std::string_view body, Deadline deadline);
  bool answersPicture(const std::string& request, std::string_view address, Deadline deadline);

  BrowserConnection connection_;
  std::string session_;
  BrowserDocument document_;
  bool isServed_ = false;
  bool isLoaded_ = false;
};

}  // namespace lk
