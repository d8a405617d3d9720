#include "LKCore/DOCX/CodeRuns.h"

#include <algorithm>

#include "LKCore/Base/Text.h"
#include "LKCore/DOCX/DocumentRuns.h"

namespace lk::word {

namespace {

using CodeToken = LKBindSyntaxHighlighter::Token;

constexpr int kCodeHalfPoints = 20;

RunFormat codeFormat(LKBindSyntaxHighlighter::TokenKind kind) {
  RunFormat format{.halfPoints = kCodeHalfPoints};
  format.colour = LKBindSyntaxHighlighter::lightColour(kind);
  format.isBold = kind == LKBindSyntaxHighlighter::TokenKind::keyword;
  format.isItalic = kind == LKBindSyntaxHighlighter::TokenKind::comment;
  return format;
}

void appendCode(std::string& xml, std::string_view code, const RunFormat& format) {
  appendRun(xml, text::replacingAll(code, "\t", "    "), format, RunFont::monospace);
}

}  // namespace

std::vector<std::vector<CodeToken>> splitTokensByLine(std::string_view code,
                                                      const std::vector<CodeToken>& tokens) {
  std::vector<std::vector<CodeToken>> result;
  size_t start = 0;
  auto token = tokens.begin();
  for (const std::string_view line : text::split(code, '\n')) {
    const size_t end = start + line.size();
    std::vector<CodeToken>& own = result.emplace_back();
    for (; token != tokens.end() && token->range.start <= end; ++token) {
      const size_t from = std::max(token->range.start, start);
      const size_t to = std::min(token->range.end, end);
      if (from < to) own.push_back({{from - start, to - start}, token->kind});
      if (token->range.end > end) break;  // the next line has the rest
    }
    start = end + 1;
  }
  return result;
}

std::vector<std::string> codeRuns(const std::vector<std::string>& lines,
                                  std::string_view language) {
  std::string code;
  for (const std::string& line : lines) code.append(line).append("\n");
  if (!code.empty()) code.pop_back();
  std::vector<CodeToken> tokens;
  if (!language.empty()) tokens = LKBindSyntaxHighlighter::tokens(code, language);
  const auto byLine = splitTokensByLine(code, tokens);
  std::vector<std::string> result;
  const RunFormat plain{.halfPoints = kCodeHalfPoints};
  for (size_t i = 0; i < lines.size(); ++i) {
    const std::string_view line = lines[i];
    std::string& runs = result.emplace_back();
    size_t copied = 0;
    for (const CodeToken& token : byLine[i]) {
      appendCode(runs, line.substr(copied, token.range.start - copied), plain);
      appendCode(runs, token.range.of(line), codeFormat(token.kind));
      copied = token.range.end;
    }
    appendCode(runs, line.substr(copied), plain);
  }
  return result;
}

}  // namespace lk::word
