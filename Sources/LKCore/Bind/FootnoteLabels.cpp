#include "LKCore/Bind/FootnoteLabels.h"

#include <string_view>
#include <unordered_map>
#include <unordered_set>

#include "LKCore/Base/Text.h"
#include "LKCore/Base/TextRange.h"
#include "LKCore/Rendering/SourcePasses.h"

namespace lk {

namespace {

// Every "[^label]" outside of fences, as the renderer sees them: the range of the label in the body.
struct FootnoteMark {
  TextRange label;
  bool isDefinition = false;
};

void appendMarksOfLine(std::vector<FootnoteMark>& marks, std::string_view line, size_t offset) {
  const bool isDefinition = LKMarkdownToHTML::footnoteDefinition(line).has_value();
  for (size_t start = line.find("[^"); start != std::string_view::npos;) {
    const size_t end = line.find(']', start + 2);
    if (end == std::string_view::npos) return;
    if (end > start + 2) {
      marks.push_back({{offset + start + 2, offset + end}, isDefinition && start == 0});
    }
    start = line.find("[^", end);
  }
}

std::vector<FootnoteMark> footnoteMarks(std::string_view body) {
  std::vector<FootnoteMark> marks;
  if (body.find("[^") == std::string_view::npos) return marks;
  bool inFence = false;
  size_t offset = 0;
  for (const std::string_view line : text::split(body, '\n')) {
    if (LKMarkdownToHTML::isFenceMark(line)) inFence = !inFence;
    if (!inFence) appendMarksOfLine(marks, line, offset);
    offset += line.size() + 1;
  }
  return marks;
}

class FootnoteNames {
 public:
  // Takes note of the labels of a body; no name that is made up later is one of them.
  void see(const std::string& body, const std::vector<FootnoteMark>& marks) {
    std::unordered_set<std::string_view> defined;
    for (const FootnoteMark& mark : marks) {
      if (mark.isDefinition) defined.insert(mark.label.of(body));
    }
    for (const FootnoteMark& mark : marks) {
      const std::string label(mark.label.of(body));
      written_.insert(label);
      if (!defined.contains(label)) taken_.insert(label);
    }
  }

  // The labels that this body defines, with the names that they get.
  std::unordered_map<std::string, std::string> take(const std::string& body,
                                                    const std::vector<FootnoteMark>& marks) {
    std::unordered_map<std::string, std::string> names;
    for (const FootnoteMark& mark : marks) {
      if (!mark.isDefinition) continue;
      const auto [entry, isNew] = names.try_emplace(std::string(mark.label.of(body)));
      if (isNew) entry->second = freeName(entry->first);
    }
    return names;
  }

 private:
  std::string freeName(const std::string& label) {
    if (taken_.insert(label).second) return label;
    size_t& number = lastNumber_.try_emplace(label, 1).first->second;
    std::string name;
    do {
      name = label + "-" + std::to_string(++number);
    } while (written_.contains(name) || !taken_.insert(name).second);
    return name;
  }

  std::unordered_set<std::string> written_;
  std::unordered_set<std::string> taken_;
  std::unordered_map<std::string, size_t> lastNumber_;
};

std::string withFootnoteNames(const std::string& body, const std::vector<FootnoteMark>& marks,
                              const std::unordered_map<std::string, std::string>& names) {
  std::string result;
  result.reserve(body.size());
  size_t copied = 0;
  for (const FootnoteMark& mark : marks) {
    const auto name = names.find(std::string(mark.label.of(body)));
    if (name == names.end()) continue;
    result.append(body, copied, mark.label.start - copied).append(name->second);
    copied = mark.label.end;
  }
  return result.append(body, copied);
}

}  // namespace

void makeFootnoteLabelsUnique(const std::vector<std::string*>& bodies) {
  std::vector<std::vector<FootnoteMark>> marks;
  FootnoteNames names;
  for (const std::string* body : bodies) {
    marks.push_back(footnoteMarks(*body));
    names.see(*body, marks.back());
  }
  for (size_t i = 0; i < bodies.size(); ++i) {
    if (marks[i].empty()) continue;
    *bodies[i] = withFootnoteNames(*bodies[i], marks[i], names.take(*bodies[i], marks[i]));
  }
}

}  // namespace lk
