#include "LKCore/Bind/LKBindSyntaxHighlighter.h"

#include "LKCore/Base/Text.h"
#include "LKCore/Rendering/HTMLText.h"

namespace lk::LKBindSyntaxHighlighter {

namespace {

std::string colouredHTML(std::string_view html, std::string_view language) {
  const std::string code = html::unescaped(html);
  std::string result;
  result.reserve(html.size() * 2);
  size_t copied = 0;
  for (const Token& token : tokens(code, language)) {
    result.append(html::escaped(std::string_view(code).substr(copied, token.range.start - copied)));
    result.append("<span class=\"").append(className(token.kind)).append("\">");
    result.append(html::escaped(token.range.of(code))).append("</span>");
    copied = token.range.end;
  }
  return result.append(html::escaped(std::string_view(code).substr(copied)));
}

}  // namespace

std::vector<Token> tokens(std::string_view code, std::string_view language) {
  std::vector<Token> result;
  const auto coloured = colouredCode(code, text::trimmed(language));
  if (!coloured) return result;
  result.reserve(coloured->size());
  for (const ColouredCode& stretch : *coloured) result.push_back({stretch.range, stretch.colour});
  return result;
}

std::string applyToHTML(std::string_view html) {
  static constexpr std::string_view kOpening = "<pre><code class=\"language-";
  std::string result;
  size_t copied = 0;
  for (size_t start = html.find(kOpening); start != std::string_view::npos;
       start = html.find(kOpening, copied)) {
    const size_t language = start + kOpening.size();
    const size_t quote = html.find("\">", language);
    if (quote == std::string_view::npos) break;
    const size_t code = quote + 2;
    const size_t end = html.find("</code>", code);
    if (end == std::string_view::npos) break;
    result.append(html.substr(copied, code - copied));
    const std::string_view content = html.substr(code, end - code);
    const bool isText = content.find('<') == std::string_view::npos;
    result.append(isText ? colouredHTML(content, html.substr(language, quote - language))
                         : std::string(content));
    copied = end;
  }
  return result.append(html.substr(copied));
}

std::string_view className(TokenKind kind) {
  switch (kind) {
    case TokenKind::keyword:
      return "hl-keyword";
    case TokenKind::string:
      return "hl-string";
    case TokenKind::comment:
      return "hl-comment";
    case TokenKind::number:
      break;
  }
  return "hl-number";
}

std::string_view lightColour(TokenKind kind) {
  switch (kind) {
    case TokenKind::keyword:
      return "8a1c7c";
    case TokenKind::string:
      return "9a2a1c";
    case TokenKind::comment:
      return "5d6b60";
    case TokenKind::number:
      break;
  }
  return "1c4fa0";
}

std::string_view lightSheet() {
  return R"(.hl-keyword { color: #8a1c7c; font-weight: bold; }
.hl-string { color: #9a2a1c; }
.hl-comment { color: #5d6b60; font-style: italic; }
.hl-number { color: #1c4fa0; }
)";
}

}  // namespace lk::LKBindSyntaxHighlighter
