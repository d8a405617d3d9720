#include "LKCore/Bind/LKBindCSSGenerator.h"

#include "LKCore/Base/Text.h"
#include "LKCore/Bind/CSSText.h"
#include "LKCore/Bind/LKBindEngine.h"

namespace lk::LKBindCSSGenerator {

namespace {

std::string points(double value) {
  return css::number(value) + "pt";
}

std::string_view lineHeight(LKBindLineSpacing spacing) {
  switch (spacing) {
    case LKBindLineSpacing::single:
      return "1";
    case LKBindLineSpacing::oneAndAHalf:
      return "1.5";
    case LKBindLineSpacing::double_:
      break;
  }
  return "2";
}

std::string_view alignmentName(LKBindAlignment alignment) {
  switch (alignment) {
    case LKBindAlignment::center:
      return "center";
    case LKBindAlignment::right:
      return "right";
    case LKBindAlignment::justify:
      return "justify";
    case LKBindAlignment::left:
      break;
  }
  return "left";
}

std::string_view flexPlace(LKBindAlignment alignment) {
  if (alignment == LKBindAlignment::left) return "flex-start";
  return alignment == LKBindAlignment::right ? "flex-end" : "center";
}

std::string_view verticalPlace(std::string_view position) {
  if (position == "top") return "flex-start";
  return position == "bottom" ? "flex-end" : "center";
}

std::string_view selectorOf(Level level) {
  switch (level) {
    case Level::part:
      return "h1.bind-part";
    case Level::h1:
      return "h1, h1.bind-chapter";
    case Level::h2:
      return "h2";
    case Level::h3:
      break;
  }
  return "h3";
}

double textHeight(const LKBindPage& page) {
  const bool isUpright = page.orientation == LKBindOrientation::portrait;
  const double height = isUpright ? page.heightIn : page.widthIn;
  return height - page.marginIn.topIn - page.marginIn.bottomIn;
}

}  // namespace

std::string css(const LKBindSpec& spec, const LKBindSubject& subject) {
  LKBindTokenContext context = subject.tokens();
  context.chapterTitle = LKBindEngine::bookTitle(spec, subject);
  const LKBindTypography& type = spec.typography;
  return pageRule(spec, context) + bodyRules(type) +
         headingRule(Level::part, spec.headings.part, type) +
         headingRule(Level::h1, spec.headings.h1, type) +
         headingRule(Level::h2, spec.headings.h2, type) +
         headingRule(Level::h3, spec.headings.h3, type) + sceneBreakRules(spec.sceneBreak) +
         codeRules(type) + roleRules(spec) + imageRules() + fixedRules();
}

std::string bodyRules(const LKBindTypography& type) {
  const std::string hyphens = type.justifyBody ? "auto" : "manual";
  // Running heads take the font of "html" in some engines.
  return "html, body { overflow-x: clip; }\n"
         "html { font-family: " +
         cssFontFamily(type.bodyFont) +
         "; }\n"
         "body {\n  font-family: " +
         cssFontFamily(type.bodyFont) + ";\n  font-size: " + points(type.bodySizePt) +
         ";\n  line-height: " + std::string(lineHeight(type.lineSpacing)) +
         ";\n  text-align: " + (type.justifyBody ? "justify" : "left") +
         ";\n  hyphens: " + hyphens + ";\n  -webkit-hyphens: " + hyphens +
         ";\n  hyphenate-limit-chars: 6 3 2;\n  margin: 0;\n  padding: 0;\n  widows: 3;\n"
         "  orphans: 3;\n  overflow-wrap: break-word;\n}\n"
         "p { margin: 0 0 " +
         points(type.paragraphSpacingPt) + "; text-indent: " + css::number(type.firstLineIndentIn) +
         "in; }\n" +
         "h1 + p, h2 + p, h3 + p, h4 + p, h5 + p, h6 + p, hr + p, .bind-pagebreak + p, "
         "nav.bind-toc + p, .bind-titlepage + p, body > p:first-child { text-indent: 0; }\n"
         "li p, td p, th p, blockquote p, .bind-titlepage p, section.footnotes p, "
         ".lk-admonition p { text-indent: 0; }\n"
         "ul, ol { margin: 0.6em 0; padding-left: 1.6em; }\n"
         "blockquote { margin: 0.8em 1.5em; }\n"
         "h1, h2, h3, h4, h5, h6 { hyphens: manual; -webkit-hyphens: manual; }\n";
}

std::string headingRule(Level level, const LKBindHeading& heading, const LKBindTypography& type) {
  const bool isBold = heading.weight == LKBindFontWeight::bold;
  std::string rule(selectorOf(level));
  rule.append(" {\n  font-family: ").append(cssFontFamily(type.headingFont));
  rule.append(";\n  font-size: ").append(points(heading.sizePt));
  rule.append(";\n  font-weight: ").append(isBold ? "bold" : "normal");
  rule.append(";\n  text-align: ").append(alignmentName(heading.alignment));
  rule.append(";\n  margin: ").append(points(heading.spacingBeforePt)).append(" 0 ");
  rule.append(points(heading.spacingAfterPt));
  rule.append(";\n  text-indent: 0;\n  page-break-after: avoid;\n  break-after: avoid-page;\n");
  rule.append("  line-height: 1.2;\n  white-space: pre-line;\n");
  if (heading.pageBreakBefore) rule.append("  page-break-before: always;\n");
  return rule.append("}\n");
}

std::string sceneBreakRules(const LKBindSceneBreak& scene) {
  const std::string before = points(scene.spacingBeforePt);
  const std::string after = points(scene.spacingAfterPt);
  switch (scene.rendering) {
    case LKBindSceneBreakRendering::blankLine:
      return "hr { border: 0; margin: 0; height: " +
             points(scene.spacingBeforePt + scene.spacingAfterPt) + "; }\n";
    case LKBindSceneBreakRendering::horizontalRule:
      return "hr { border: 0; border-top: 1px solid currentColor; width: 25%; margin: " + before +
             " auto " + after + "; }\n";
    case LKBindSceneBreakRendering::centeredText:
      break;
  }
  // The padding is the room of the text, which hangs below a rule without height.
  return "hr {\n  border: 0;\n  height: 0;\n  padding: 0 0 1.2em;\n  overflow: visible;\n"
         "  text-align: " +
         std::string(alignmentName(scene.alignment)) + ";\n  margin: " + before + " 0 " + after +
         ";\n  page-break-after: avoid;\n  break-after: avoid-page;\n}\n"
         "hr::after {\n  display: block;\n  content: " +
         css::quoted(scene.text) +
         ";\n  letter-spacing: 0.4em;\n  font-size: 1.1em;\n  line-height: 1.1;\n}\n";
}

std::string codeRules(const LKBindTypography& type) {
  return "pre, code, kbd, samp { font-family: " + cssFontFamily(type.codeFont) +
         "; font-size: " + points(type.codeSizePt) +
         "; hyphens: manual; -webkit-hyphens: manual; }\n"
         "pre {\n  background: #f5f5f5;\n  padding: 0.5em;\n  border-radius: 4px;\n"
         "  margin: 0.8em 0;\n  line-height: 1.35;\n  text-align: left;\n  white-space: pre-wrap;\n"
         "  overflow-wrap: anywhere;\n}\n"
         "code { background: #f5f5f5; padding: 0.1em 0.3em; border-radius: 3px; "
         "overflow-wrap: anywhere; }\n"
         "pre code { background: none; padding: 0; border-radius: 0; }\n";
}

std::string roleRules(const LKBindSpec& spec) {
  const LKBindTitlePage& title = spec.frontMatter.titlePage;
  return ".bind-titlepage {\n  display: flex;\n  flex-direction: column;\n"
         "  align-items: center;\n  justify-content: center;\n  text-align: center;\n"
         "  min-height: " +
         css::number(textHeight(spec.page)) +
         "in;\n  box-sizing: border-box;\n  page-break-before: avoid;\n"
         "  page-break-after: always;\n}\n"
         ".bind-titlepage h1, .bind-titlepage h2 { page-break-before: auto; margin-top: 0; }\n"
         ".bind-titlepage > * { max-width: 100%; }\n"
         ".bind-titlepage:first-child { align-items: " +
         std::string(flexPlace(title.alignment)) +
         "; text-align: " + std::string(alignmentName(title.alignment)) +
         "; justify-content: " + std::string(verticalPlace(title.verticalPosition)) +
         "; }\n"
         ".bind-titlepage h1.bind-title { font-size: 2.2em; text-align: inherit; "
         "margin: 0 0 0.5em; }\n"
         ".bind-titlepage p.bind-subtitle { font-size: 1.3em; line-height: 1.3; "
         "font-style: italic; margin: 0 0 1.5em; }\n"
         ".bind-titlepage p.bind-author { font-size: 1.15em; line-height: 1.3; "
         "margin: 1.5em 0 0; }\n"
         ".bind-pagebreak { page-break-after: always; height: 0; }\n";
}

std::string imageRules() {
  return "img { max-width: 100%; height: auto; }\n"
         "p > img:only-child { display: block; margin: 0.8em auto; }\n";
}

std::string cssFontFamily(std::string_view name) {
  const std::string lower = text::lowercased(text::trimmed(name));
  const auto holds = [&](std::string_view part) { return lower.find(part) != std::string::npos; };
  if (lower.starts_with("system-ui") || lower.starts_with("-apple-system")) {
    return "-apple-system, BlinkMacSystemFont, \"Segoe UI\", Roboto, \"Helvetica Neue\", "
           "system-ui, sans-serif";
  }
  std::string family = css::quoted(text::trimmed(name));
  if (holds("mono") || holds("courier") || holds("menlo") || holds("consolas")) {
    return family.append(", Menlo, Consolas, monospace");
  }
  if (holds("sans") || lower == "helvetica") return family.append(", Helvetica, Arial, sans-serif");
  return family.append(", Georgia, 'Times New Roman', serif");
}

}  // namespace lk::LKBindCSSGenerator
