// The page box and its running heads.

#include <algorithm>
#include <array>
#include <utility>

#include "LKCore/Base/Text.h"
#include "LKCore/Bind/CSSText.h"
#include "LKCore/Bind/LKBindCSSGenerator.h"

namespace lk::LKBindCSSGenerator {

namespace {

struct MarginBox {
  std::string_view name;
  std::string LKBindHeaderFooter::*text;
};

constexpr std::array<MarginBox, 6> kMarginBoxes = {{
    {"top-left", &LKBindHeaderFooter::headerLeft},
    {"top-center", &LKBindHeaderFooter::headerCenter},
    {"top-right", &LKBindHeaderFooter::headerRight},
    {"bottom-left", &LKBindHeaderFooter::footerLeft},
    {"bottom-center", &LKBindHeaderFooter::footerCenter},
    {"bottom-right", &LKBindHeaderFooter::footerRight},
}};

constexpr std::string_view kFrontCounter = "bind-front";

bool countsPages(std::string_view content) {
  return content.find("counter(page") != std::string_view::npos;
}

std::string sizeRule(const LKBindPage& page) {
  std::string width = css::number(page.widthIn);
  std::string height = css::number(page.heightIn);
  if (page.orientation == LKBindOrientation::landscape) std::swap(width, height);
  const LKBindMargins& margin = page.marginIn;
  return "  size: " + width + "in " + height + "in;\n" +  //
         "  margin-top: " + css::number(margin.topIn) + "in;\n" +
         "  margin-bottom: " + css::number(margin.bottomIn) + "in;\n" +
         "  margin-left: " + css::number(margin.leftIn) + "in;\n" +
         "  margin-right: " + css::number(margin.rightIn) + "in;\n";
}

struct RunningBox {
  std::string_view name;
  std::string content;
  std::string frontContent;  // with the counter and the numbering of the front matter
};

std::vector<RunningBox> runningBoxes(const LKBindHeaderFooter& heads,
                                     const LKBindTokenContext& context) {
  std::vector<RunningBox> boxes;
  if (heads.style == LKBindHeaderFooterStyle::none) return boxes;
  for (const MarginBox& box : kMarginBoxes) {
    const std::string& text = heads.*box.text;
    std::string content = resolveRunning(text, context, heads.pageNumberStyle);
    if (content.empty()) continue;
    boxes.push_back({box.name, std::move(content),
                     resolveRunning(text, context, heads.frontMatterPageStyle, kFrontCounter)});
  }
  return boxes;
}

// A head without a page number is a running string that every chapter sets anew: on the page where
// it does, "first-except" prints nothing. An engine without running strings keeps the text.
bool isSuppressible(const RunningBox& box, const LKBindHeaderFooter& heads) {
  return heads.suppressOnChapterFirstPage && !countsPages(box.content);
}

std::string marginBoxRule(const RunningBox& box, const LKBindHeaderFooter& heads) {
  std::string rule = "  @" + std::string(box.name) + " {\n    font-family: inherit;\n" +
                     "    font-size: 10pt;\n    color: #555;\n    content: " + box.content + ";\n";
  if (isSuppressible(box, heads)) {
    rule.append("    content: string(bind-").append(box.name).append(", first-except);\n");
  }
  return rule.append("  }\n");
}

std::string runningStrings(const std::vector<RunningBox>& boxes, const LKBindHeaderFooter& heads) {
  std::string strings;
  for (const RunningBox& box : boxes) {
    if (!isSuppressible(box, heads)) continue;
    strings.append(strings.empty() ? "" : ", ").append("bind-").append(box.name);
    strings.append(" ").append(box.content);
  }
  if (strings.empty()) return {};
  // Not on the body, which is on every page: each would count as one where the string is set.
  return "body > :first-child, h1.bind-chapter, h1.bind-part { string-set: " + strings + "; }\n";
}

// Pages before the book proper count for themselves, on a counter of their own. The pages' counter
// stands still meanwhile: no engine lets an element reset it.
std::string frontMatterRules(const std::vector<RunningBox>& boxes,
                             const LKBindHeaderFooter& heads) {
  if (!countsFrontMatterApart(heads)) return {};
  std::string rules =
      "@page bind-front {\n  counter-increment: " + std::string(kFrontCounter) + " 1 page 0;\n";
  for (const RunningBox& box : boxes) {
    if (box.content == box.frontContent) continue;
    rules.append("  @").append(box.name).append(" { content: ");
    rules.append(box.frontContent).append("; }\n");
  }
  return rules.append("}\n.bind-titlepage, nav.bind-toc { page: bind-front; }\n");
}

std::string blankRule(std::string_view page) {
  std::string rule = "@page " + std::string(page) + " {\n";
  for (const MarginBox& box : kMarginBoxes) {
    rule.append("  @").append(box.name).append(" { content: none; }\n");
  }
  return rule.append("}\n");
}

}  // namespace

std::string pageRule(const LKBindSpec& spec, const LKBindTokenContext& context) {
  const LKBindHeaderFooter& heads = spec.headerFooter;
  const std::vector<RunningBox> boxes = runningBoxes(heads, context);
  std::string rules = "@page {\n" + sizeRule(spec.page) +
                      "  font-family: " + cssFontFamily(spec.typography.bodyFont) + ";\n";
  for (const RunningBox& box : boxes) rules.append(marginBoxRule(box, heads));
  rules.append("}\n").append(frontMatterRules(boxes, heads)).append(runningStrings(boxes, heads));
  if (!heads.firstPageBlank) return rules;
  rules.append(blankRule(":first"));
  // A named page outranks ":first".
  return countsFrontMatterApart(heads) ? rules.append(blankRule("bind-front:first")) : rules;
}

std::string resolveRunning(std::string_view text, const LKBindTokenContext& context,
                           LKBindPageNumberStyle numbers, std::string_view pageCounter) {
  std::string content;
  std::string literal;
  const auto append = [&](std::string_view piece) {
    content.append(content.empty() ? "" : " ").append(piece);
  };
  const auto finishLiteral = [&] {
    if (!literal.empty()) append(css::quoted(literal));
    literal.clear();
  };
  const auto token = [&](std::string_view name) {
    if (name == "page" || name == "pagecount") {
      finishLiteral();
      const std::string counter(name == "page" ? pageCounter : "pages");
      const bool isPlain = numbers == LKBindPageNumberStyle::arabic;
      append("counter(" + counter +
             (isPlain ? ")" : ", " + std::string(counterStyleName(numbers)) + ")"));
    } else if (const auto value = LKBindTokenResolver::value(name, context)) {
      literal.append(*value);
    } else if (!LKBindTokenResolver::isToken(name)) {
      literal.append("{").append(name).append("}");
    }
  };
  LKBindTokenResolver::walk(
      text, [&](std::string_view piece) { literal.append(piece); }, token);
  if (content.empty() && text::trimmed(literal).empty()) return {};
  finishLiteral();
  return content;
}

bool countsFrontMatterApart(const LKBindHeaderFooter& heads) {
  if (heads.style == LKBindHeaderFooterStyle::none) return false;
  if (heads.frontMatterPageStyle == heads.pageNumberStyle) return false;
  return std::ranges::any_of(kMarginBoxes, [&](const MarginBox& box) {
    return countsPages(resolveRunning(heads.*box.text, {}, heads.pageNumberStyle));
  });
}

std::string_view counterStyleName(LKBindPageNumberStyle style) {
  switch (style) {
    case LKBindPageNumberStyle::romanLower:
      return "lower-roman";
    case LKBindPageNumberStyle::romanUpper:
      return "upper-roman";
    case LKBindPageNumberStyle::arabic:
      break;
  }
  return "decimal";
}

}  // namespace lk::LKBindCSSGenerator
