#include "LKCore/Rendering/MarkdownInlines.h"

#include <utility>

#include "LKCore/Rendering/CmarkParser.h"

namespace lk {

namespace {

// A blank that Markdown does not count as one: before it a line is the inside of a paragraph.
constexpr std::string_view kInlineStart = "\xC2\xA0";

bool mayHoldMarkup(std::string_view line) {
  return line.find_first_of("\\*_~`[]<&@") != std::string_view::npos ||
         line.find("://") != std::string_view::npos || line.find("www.") != std::string_view::npos;
}

std::string textOf(const char* literal) {
  return literal == nullptr ? std::string() : std::string(literal);
}

class InlineCollector {
 public:
  void take(cmark_event_type event, cmark_node* node) {
    const bool isEntered = event == CMARK_EVENT_ENTER;
    const cmark_node_type type = cmark_node_get_type(node);
    if (type == CMARK_NODE_STRONG) {
      strong_ += isEntered ? 1 : -1;
    } else if (type == CMARK_NODE_EMPH) {
      emphasized_ += isEntered ? 1 : -1;
    } else if (type == CMARK_NODE_LINK) {
      link_ = isEntered ? textOf(cmark_node_get_url(node)) : std::string();
    } else if (type == CMARK_NODE_IMAGE) {
      takeImage(isEntered, node);
    } else if (std::string_view(cmark_node_get_type_string(node)) == "strikethrough") {
      deleted_ += isEntered ? 1 : -1;
    } else if (isEntered) {
      takeLeaf(type, node);
    }
  }

  std::vector<MarkdownInline> finished() {
    if (!inlines_.empty() && inlines_.front().text.starts_with(kInlineStart)) {
      inlines_.front().text.erase(0, kInlineStart.size());
      if (inlines_.front().text.empty()) inlines_.erase(inlines_.begin());
    }
    return std::move(inlines_);
  }

 private:
  void takeImage(bool isEntered, cmark_node* node) {
    if (isEntered && ++images_ == 1) {
      add(MarkdownInline::Kind::image, "");
      inlines_.back().source = textOf(cmark_node_get_url(node));
    }
    if (!isEntered) --images_;
  }

  void takeLeaf(cmark_node_type type, cmark_node* node) {
    const char* const literal = cmark_node_get_literal(node);
    if (images_ > 0) {  // the words of an image within its alt
      if (type != CMARK_NODE_HTML_INLINE) inlines_.back().text.append(textOf(literal));
    } else if (type == CMARK_NODE_TEXT) {
      addText(textOf(literal));
    } else if (type == CMARK_NODE_CODE) {
      add(MarkdownInline::Kind::code, textOf(literal));
    } else if (type == CMARK_NODE_HTML_INLINE) {
      add(MarkdownInline::Kind::html, textOf(literal));
    } else if (type == CMARK_NODE_LINEBREAK || type == CMARK_NODE_SOFTBREAK) {
      add(MarkdownInline::Kind::lineBreak, "");
    }
  }

  void addText(std::string text) {
    const MarkdownInline next = made(MarkdownInline::Kind::text, std::move(text));
    if (!inlines_.empty()) {
      MarkdownInline& last = inlines_.back();
      const bool isAlike = last.kind == next.kind && last.isStrong == next.isStrong &&
                           last.isEmphasized == next.isEmphasized &&
                           last.isDeleted == next.isDeleted && last.link == next.link;
      if (isAlike) {
        last.text.append(next.text);
        return;
      }
    }
    inlines_.push_back(next);
  }

  void add(MarkdownInline::Kind kind, std::string text) {
    inlines_.push_back(made(kind, std::move(text)));
  }

  MarkdownInline made(MarkdownInline::Kind kind, std::string text) const {
    return {kind, std::move(text), strong_ > 0, emphasized_ > 0, deleted_ > 0, link_, ""};
  }

  std::vector<MarkdownInline> inlines_;
  int strong_ = 0;
  int emphasized_ = 0;
  int deleted_ = 0;
  int images_ = 0;
  std::string link_;
};

}  // namespace

std::vector<MarkdownInline> markdownInlines(std::string_view line) {
  std::vector<MarkdownInline> plain;
  if (line.empty()) return plain;
  plain.push_back({MarkdownInline::Kind::text, std::string(line)});
  if (!mayHoldMarkup(line)) return plain;
  using LKMarkdownToHTML::CmarkOwned;
  const CmarkOwned<cmark_parser> parser = LKMarkdownToHTML::cmarkParser(CMARK_OPT_UNSAFE);
  if (!parser) return plain;
  cmark_parser_feed(parser.get(), kInlineStart.data(), kInlineStart.size());
  cmark_parser_feed(parser.get(), line.data(), line.size());
  const CmarkOwned<cmark_node> document(cmark_parser_finish(parser.get()));
  if (!document) return plain;
  InlineCollector collector;
  const CmarkOwned<cmark_iter> nodes(cmark_iter_new(document.get()));
  for (cmark_event_type event = cmark_iter_next(nodes.get()); event != CMARK_EVENT_DONE;
       event = cmark_iter_next(nodes.get())) {
    collector.take(event, cmark_iter_get_node(nodes.get()));
  }
  return collector.finished();
}

}  // namespace lk
