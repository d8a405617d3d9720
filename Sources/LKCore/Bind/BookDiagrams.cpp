#include <utility>

#include "LKCore/Base/Base64.h"
#include "LKCore/Base/Digest.h"
#include "LKCore/Base/Text.h"
#include "LKCore/Bind/BookPasses.h"
#include "LKCore/Bind/CSSText.h"
#include "LKCore/Bind/CodeFence.h"

namespace lk::LKBindEngine {

namespace {

constexpr std::string_view kNoPicture =
    "<figure class=\"bind-mermaid-caption\"><em>(diagram — view source)</em></figure>";
constexpr size_t kMarkBytes = 16;

std::string figureOf(std::string_view source, const LKBindDiagrams& renders) {
  const auto render = renders.find(source);
  if (render == renders.end()) return std::string(kNoPicture);
  const LKBindDiagram& diagram = render->second;
  if (diagram.svg.empty() && diagram.png.empty()) return std::string(kNoPicture);
  // As an image, so that nothing in the picture's document can act on the page.
  const bool isVector = !diagram.svg.empty();
  std::string figure = "<figure class=\"bind-mermaid\"><img src=\"data:image/";
  figure.append(isVector ? "svg+xml" : "png").append(";base64,");
  figure.append(base64Text(isVector ? diagram.svg : diagram.png)).append("\" alt=\"Diagram\"");
  if (diagram.width > 0 && diagram.height > 0) {
    figure.append(" width=\"").append(css::number(diagram.width));
    figure.append("\" height=\"").append(css::number(diagram.height)).append("\"");
  }
  return figure.append(" /></figure>");
}

class DiagramReader {
 public:
  DiagramReader(DiagramSlots& slots, const LKBindDiagrams& renders)
      : slots_(slots), renders_(renders) {}

  void take(std::string_view line) {
    const CodeFenceWalk::Line kind = fences_.take(line);
    if (kind == CodeFenceWalk::Line::opening) {
      const auto opening = parseCodeFenceStart(line);
      if (opening && opening->language == "mermaid") {
        start_ = slots_.text.size();
        indent_ = line.substr(0, line.find('`'));
        source_.clear();
        isFirstLine_ = true;
      }
    } else if (start_ && kind == CodeFenceWalk::Line::inside) {
      source_.append(std::exchange(isFirstLine_, false) ? "" : "\n").append(line);
    } else if (start_ && kind == CodeFenceWalk::Line::closing) {
      slots_.text.resize(*start_);
      slots_.text.append(indent_).append(slots_.mark).append(std::to_string(slots_.figures.size()));
      slots_.text.append("-->\n");
      slots_.figures.push_back(figureOf(source_, renders_));
      start_.reset();
      return;
    }
    slots_.text.append(line);
  }

 private:
  DiagramSlots& slots_;
  const LKBindDiagrams& renders_;
  CodeFenceWalk fences_;
  std::optional<size_t> start_;  // of the open diagram in the text
  std::string_view indent_;
  std::string source_;
  bool isFirstLine_ = true;
};

}  // namespace

DiagramSlots substituteMermaid(std::string_view manuscript, const LKBindDiagrams& renders) {
  DiagramSlots slots;
  if (manuscript.find("mermaid") == std::string_view::npos) {
    slots.text = manuscript;
    return slots;
  }
  // A digest of the whole manuscript, which no part of it can hold.
  slots.mark = "<!--bind-diagram-" + sha256Hex(manuscript, kMarkBytes) + "-";
  slots.text.reserve(manuscript.size());
  DiagramReader reader(slots, renders);
  for (const std::string_view line : text::split(manuscript, '\n')) {
    reader.take(line);
    slots.text.push_back('\n');
  }
  slots.text.pop_back();  // the last line's end was not there
  return slots;
}

std::string withFigures(std::string_view html, const DiagramSlots& slots) {
  if (slots.figures.empty()) return std::string(html);
  std::string result;
  size_t copied = 0;
  for (size_t start = html.find(slots.mark); start != std::string_view::npos;
       start = html.find(slots.mark, copied)) {
    const size_t digits = start + slots.mark.size();
    const size_t end = html.find("-->", digits);
    int64_t number = 0;
    const bool isSlot = end != std::string_view::npos &&
                        text::parseInteger(html.substr(digits, end - digits), number) &&
                        number >= 0 && static_cast<size_t>(number) < slots.figures.size();
    if (!isSlot) break;
    result.append(html.substr(copied, start - copied));
    result.append(slots.figures[static_cast<size_t>(number)]);
    copied = end + 3;
  }
  return result.append(html.substr(copied));
}

}  // namespace lk::LKBindEngine
