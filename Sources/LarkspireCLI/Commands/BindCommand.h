#pragma once

#include <optional>
#include <string>

#include "LarkspireCLI/Support/Command.h"

namespace lk {

// `lk bind`
class BindCommand final : public Command {
 public:
  enum class Format { pdf, docx, epub, html };

  void declare(ArgumentList& arguments) override;
  void run() override;

  std::optional<std::string> tag;
  std::optional<std::string> book;
  std::optional<std::string> output;
  std::optional<std::string> format;
  std::string author;
  std::optional<std::string> specFile;
  std::string style = "standard";
  // Not given, the style's own stays. What the other defaults below say is what every style has.
  std::optional<std::string> page;
  std::string margin = "standard";
  std::string orientation = "portrait";
  std::optional<std::string> chapterHeading;
  std::string paragraphStyle = "larkspire";
  std::string headerFooter = "published-book";
  std::string footnotes = "per-page";
  std::string paragraphs = "inherit";
  std::optional<std::string> theme;
  std::optional<std::string> tasks;

 private:
  void declareSourceAndOutput(ArgumentList& arguments);
  void declareStyle(ArgumentList& arguments);
};

}  // namespace lk
