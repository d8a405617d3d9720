#include "LKCore/Rendering/MarkdownRenderer.h"

#include <cmark-gfm-extension_api.h>

#include "LKCore/Rendering/CmarkParser.h"
#include "LKCore/Rendering/SourcePasses.h"

namespace lk::LKMarkdownToHTML {

namespace {

void restorePageTagsInCode(cmark_node* document) {
  const CmarkOwned<cmark_iter> nodes(cmark_iter_new(document));
  while (cmark_iter_next(nodes.get()) != CMARK_EVENT_DONE) {
    cmark_node* const node = cmark_iter_get_node(nodes.get());
    const cmark_node_type type = cmark_node_get_type(node);
    if (type != CMARK_NODE_CODE && type != CMARK_NODE_CODE_BLOCK) continue;
    const char* const code = cmark_node_get_literal(node);
    if (code == nullptr) continue;
    const std::string restored = restorePageTags(code);
    if (restored != code) cmark_node_set_literal(node, restored.c_str());
  }
}

}  // namespace

std::string renderMarkdown(std::string_view markdown, const RenderMarkdownOptions& options) {
  const int flags = CMARK_OPT_UNSAFE | (options.hardBreaks ? CMARK_OPT_HARDBREAKS : 0);
  const CmarkOwned<cmark_parser> parser = cmarkParser(flags);
  if (!parser) return "<p>Error: could not create cmark parser</p>";
  cmark_parser_feed(parser.get(), markdown.data(), markdown.size());
  const CmarkOwned<cmark_node> document(cmark_parser_finish(parser.get()));
  if (!document) return "<p>Error: cmark parser finish failed</p>";
  if (options.restoresPageTags) restorePageTagsInCode(document.get());
  const CmarkOwned<char> html(
      cmark_render_html(document.get(), flags, cmark_parser_get_syntax_extensions(parser.get())));
  return html ? html.get() : "<p>Error: cmark render failed</p>";
}

}  // namespace lk::LKMarkdownToHTML
