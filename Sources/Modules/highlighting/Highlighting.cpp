// Colours of code, by the syntax definitions of KSyntaxHighlighting.

#include <KSyntaxHighlighting/AbstractHighlighter>
#include <KSyntaxHighlighting/Definition>
#include <KSyntaxHighlighting/Format>
#include <KSyntaxHighlighting/Repository>
#include <KSyntaxHighlighting/State>
#include <KSyntaxHighlighting/Theme>
#include <algorithm>
#include <array>
#include <chrono>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "Modules/PartGuard.h"

namespace lk::part {

namespace {

using KSyntaxHighlighting::Definition;
using KSyntaxHighlighting::Repository;
using KSyntaxHighlighting::State;
using KSyntaxHighlighting::Theme;

// The definitions search with backtracking patterns: a longer line stays plain, and so does the
// rest of a text on which they have spent this time.
constexpr int kLongestLine = 1000;
constexpr std::chrono::seconds kLongestWork{5};
constexpr size_t kLongestLanguage = 40;

// Words that people write on a fence and that are neither a name nor an extension.
constexpr std::array<std::pair<std::string_view, const char*>, 12> kOtherNames = {{
    {"c#", "C#"},
    {"console", "Bash"},
    {"csharp", "C#"},
    {"f#", "FSharp"},
    {"golang", "Go"},
    {"jsonc", "JSON"},
    {"objc", "Objective-C"},
    {"objectivec", "Objective-C"},
    {"shell", "Bash"},
    {"shell-session", "Bash"},
    {"sh-session", "Bash"},
    {"vb", "MonoBasic"},
}};

Definition definitionOf(const Repository& repository, std::string_view language) {
  const QString name =
      QString::fromUtf8(language.data(), static_cast<int>(language.size())).trimmed();
  for (const Definition& definition : repository.definitions()) {
    if (definition.name().compare(name, Qt::CaseInsensitive) == 0) return definition;
  }
  for (const auto& [other, known] : kOtherNames) {
    const QLatin1String word(other.data(), static_cast<int>(other.size()));
    if (name.compare(word, Qt::CaseInsensitive) == 0) return repository.definitionForName(known);
  }
  return repository.definitionForFileName("code." + name.toLower());
}

std::optional<PartColour> colourOf(Theme::TextStyle style) {
  switch (style) {
    case Theme::Keyword:
    case Theme::ControlFlow:
    case Theme::DataType:
    case Theme::Constant:
    case Theme::Import:
      return PartColour::keyword;
    case Theme::Char:
    case Theme::SpecialChar:
    case Theme::String:
    case Theme::VerbatimString:
    case Theme::SpecialString:
      return PartColour::string;
    case Theme::DecVal:
    case Theme::BaseN:
    case Theme::Float:
      return PartColour::number;
    case Theme::Comment:
    case Theme::Documentation:
    case Theme::Annotation:
    case Theme::CommentVar:
    case Theme::RegionMarker:
    case Theme::Information:
    case Theme::Warning:
    case Theme::Alert:
      return PartColour::comment;
    default:
      return std::nullopt;
  }
}

// Where in the line each UTF-16 unit begins, in bytes, and where the line ends.
std::vector<size_t> unitStarts(std::string_view line) {
  std::vector<size_t> starts;
  starts.reserve(line.size() + 1);
  for (size_t i = 0; i < line.size(); ++i) {
    const auto byte = static_cast<unsigned char>(line[i]);
    if ((byte & 0xC0U) == 0x80U) continue;
    starts.push_back(i);
    if (byte >= 0xF0U) starts.push_back(i);
  }
  starts.push_back(line.size());
  return starts;
}

class Colourer : public KSyntaxHighlighting::AbstractHighlighter {
 public:
  explicit Colourer(PartColourSink colours) : colours_(colours) {}

  // False when the sink takes no more.
  bool readLine(std::string_view line, size_t lineStart) {
    if (line.size() > size_t{4} * kLongestLine) return true;
    const QString text = QString::fromUtf8(line.data(), static_cast<int>(line.size()));
    starts_ = unitStarts(line);
    const bool isExact = static_cast<size_t>(text.size()) + 1 == starts_.size();
    if (!isExact || text.size() > kLongestLine) return true;
    lineStart_ = lineStart;
    state_ = highlightLine(QStringView(text), state_);
    return flush();
  }

 protected:
  void applyFormat(int offset, int length, const KSyntaxHighlighting::Format& format) override {
    const std::optional<PartColour> colour = colourOf(format.textStyle());
    if (!colour || length <= 0) return;
    const size_t start = lineStart_ + starts_.at(static_cast<size_t>(offset));
    const size_t end =
        lineStart_ + starts_.at(static_cast<size_t>(offset) + static_cast<size_t>(length));
    if (pendingEnd_ == start && pendingColour_ == *colour) {
      pendingEnd_ = end;
      return;
    }
    flush();
    pendingStart_ = start;
    pendingEnd_ = end;
    pendingColour_ = *colour;
  }

 private:
  // Neighbours of one colour are one stretch, so the last one waits for the next.
  bool flush() {
    const size_t start = std::exchange(pendingStart_, 0);
    const size_t end = std::exchange(pendingEnd_, 0);
    if (end > start)
      isOpen_ = isOpen_ && colours_.take(colours_.target, start, end, pendingColour_);
    return isOpen_;
  }

  PartColourSink colours_;
  bool isOpen_ = true;
  State state_;
  std::vector<size_t> starts_;
  size_t lineStart_ = 0;
  size_t pendingStart_ = 0;
  size_t pendingEnd_ = 0;
  PartColour pendingColour_ = PartColour::keyword;
};

PartResult colour(std::string_view code, std::string_view language, PartColourSink colours,
                  PartSink error) {
  // The definitions are read once, and one reader at a time may use them.
  static std::mutex mutex;
  const std::lock_guard lock(mutex);
  static const Repository repository;
  if (language.empty() || language.size() > kLongestLanguage) return PartResult::nothing;
  const Definition definition = definitionOf(repository, language);
  if (!definition.isValid()) return PartResult::nothing;
  Colourer colourer(colours);
  colourer.setDefinition(definition);
  const auto deadline = std::chrono::steady_clock::now() + kLongestWork;
  size_t start = 0;
  while (start < code.size() && std::chrono::steady_clock::now() < deadline) {
    const size_t end = std::min(code.find('\n', start), code.size());
    if (!colourer.readLine(code.substr(start, end - start), start)) {
      return failed(error, "out of memory");
    }
    start = end + 1;
  }
  return PartResult::done;
}

}  // namespace

}  // namespace lk::part

PartResult larkspireColouredCode(PartBytes code, PartBytes language, PartColourSink colours,
                                 PartSink error) noexcept {
  using namespace lk::part;
  return guarded(error, [&] { return colour(view(code), view(language), colours, error); });
}
