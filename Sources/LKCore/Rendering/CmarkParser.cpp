#include "LKCore/Rendering/CmarkParser.h"

#include <cmark-gfm-core-extensions.h>
#include <cmark-gfm-extension_api.h>

namespace lk::LKMarkdownToHTML {

CmarkOwned<cmark_parser> cmarkParser(int flags) {
  static const bool areRegistered = [] {
    cmark_gfm_core_extensions_ensure_registered();
    return true;
  }();
  static_cast<void>(areRegistered);
  CmarkOwned<cmark_parser> parser(cmark_parser_new(flags));
  if (!parser) return parser;
  for (const char* name : {"table", "strikethrough", "tasklist", "autolink"}) {
    if (cmark_syntax_extension* extension = cmark_find_syntax_extension(name)) {
      cmark_parser_attach_syntax_extension(parser.get(), extension);
    }
  }
  return parser;
}

}  // namespace lk::LKMarkdownToHTML
