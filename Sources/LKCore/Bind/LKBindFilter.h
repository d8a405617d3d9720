#pragma once

// The body of a note without what is for its writer alone: comments, tasks, tags. Code stays as it
// is: what looks like a comment, a task or a tag within a fence, or a tag between backticks, is none.
//
// Pure functions of valid UTF-8; time is linear in the text, nothing throws.

#include <string>
#include <string_view>

#include "LKCore/Bind/LKBindSpec.h"

namespace lk::LKBindFilter {

// In this order, each if the filters ask for it: a block of properties at the start, comments,
// tasks, tags, diagrams. Where diagrams are not drawn, a line says so in their place.
std::string apply(std::string_view body, const LKBindFilters& filters);

// `metadata`: task lines without "due:", "done:", "priority:" and "id:" and their values, trimmed,
// with single blanks. `lines`: without the task lines. `keep`: as it is.
std::string applyTaskFilter(std::string_view text, LKBindStripTasks mode);

// Without "#tag": the sign, a letter and then letters, digits, "_", "/" and "-". A sign in the
// middle of a word, of an address or of a link's target begins no tag.
std::string stripTags(std::string_view text);

// With the caption as a line in the place of every closed fence whose language is "mermaid".
std::string replaceMermaidBlocks(std::string_view text, std::string_view caption);

// A line "- [x] ..." with one of blank, x, X, / and - in the box.
bool lineIsTask(std::string_view line);

}  // namespace lk::LKBindFilter
