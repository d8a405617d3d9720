#include "LKCore/Bind/LKBindEngine.h"

#include <utility>

#include "LKCore/Base/LocaleText.h"
#include "LKCore/Bind/BookPasses.h"
#include "LKCore/Bind/LKBindAssembler.h"
#include "LKCore/Bind/LKBindCSSGenerator.h"
#include "LKCore/Bind/LKBindSyntaxHighlighter.h"
#include "LKCore/Bind/LKBindThemes.h"
#include "LKCore/Bind/ProseLines.h"
#include "LKCore/Rendering/HTMLText.h"
#include "LKCore/Rendering/LKMarkdownToHTML.h"

namespace lk::LKBindEngine {

namespace {

std::string bookBody(const std::vector<LKBindNoteInput>& notes, const LKBindSpec& spec,
                     const LKBindSubject& subject, const LKBindDiagrams& mermaidRenders) {
  const std::string manuscript = LKBindAssembler::assemble(notes, spec, subject);
  if (manuscript.empty()) return {};
  DiagramSlots slots = substituteMermaid(manuscript, mermaidRenders);
  slots.text = injectTOC(slots.text, spec);
  if (spec.filters.paragraphStyle == LKBindParagraphStyle::larkspireNative) {
    slots.text = proseLinesAsParagraphs(slots.text);
  }
  // The line feed keeps a scene break at the very start from being read as a block of properties;
  // the filter has taken what is one.
  std::string html = LKMarkdownToHTML::htmlBody(
      "\n" + slots.text, LKMarkdownToHTML::SharingOptions::preview(), {}, false, false);
  html = relocateFootnotesByChapter(std::move(html), spec.filters.footnotePlacement);
  html = withFigures(html, slots);
  if (spec.filters.syntaxHighlightCode) html = LKBindSyntaxHighlighter::applyToHTML(html);
  return html;
}

}  // namespace

std::string bind(const std::vector<LKBindNoteInput>& notes, const LKBindSpec& spec,
                 const LKBindSubject& subject, const LKBindDiagrams& mermaidRenders) {
  std::string sheet = LKBindCSSGenerator::css(spec, subject) + LKBindThemes::css(spec.theme);
  if (spec.filters.syntaxHighlightCode) sheet.append(LKBindSyntaxHighlighter::lightSheet());
  const std::string language = bookLanguage(subject);
  std::string page = "<!DOCTYPE html>\n";
  page.append(language.empty() ? "<html>\n" : "<html lang=\"" + language + "\">\n");
  page.append("<head>\n<meta charset=\"utf-8\">\n<title>");
  page.append(html::escaped(bookTitle(spec, subject))).append("</title>\n<style>\n");
  page.append(sheet).append("\n</style>\n</head>\n<body>\n");
  page.append(bookBody(notes, spec, subject, mermaidRenders));
  return page.append("\n</body>\n</html>");
}

std::string bookTitle(const LKBindSpec& spec, const LKBindSubject& subject) {
  std::string title =
      LKBindTokenResolver::resolve(spec.frontMatter.titlePage.title, subject.tokens());
  for (char& c : title) {
    if (c == '\n' || c == '\r') c = ' ';
  }
  return title;
}

std::string bookLanguage(const LKBindSubject& subject) {
  return languageTag(subject.locale.empty() ? userLocale() : subject.locale);
}

}  // namespace lk::LKBindEngine
