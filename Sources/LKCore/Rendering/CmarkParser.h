#pragma once

// cmark's objects with their owner, and its parser as the system uses it.

#include <cmark-gfm.h>

#include <memory>

namespace lk::LKMarkdownToHTML {

struct CmarkDeleter {
  void operator()(cmark_parser* parser) const { cmark_parser_free(parser); }
  void operator()(cmark_node* node) const { cmark_node_free(node); }
  void operator()(cmark_iter* nodes) const { cmark_iter_free(nodes); }
  void operator()(char* text) const { cmark_get_default_mem_allocator()->free(text); }
};

template <typename Object>
using CmarkOwned = std::unique_ptr<Object, CmarkDeleter>;

// With tables, deletions, task lists and links without markup; nothing when there is no memory.
CmarkOwned<cmark_parser> cmarkParser(int flags);

}  // namespace lk::LKMarkdownToHTML
