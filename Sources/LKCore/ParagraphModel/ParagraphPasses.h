#pragma once

// What a paragraph is because of the paragraphs around it: code between fences, text between a
// comment's lines. The passes run in the order fences, tables (TableGrouping.h), comments, each in
// one walk over the rows; they look at types and flags, not at text.

#include <span>
#include <string_view>

#include "LKCore/ParagraphModel/Paragraph.h"

namespace lk {

// The count of ">" at a block quote's head, between spaces and tabs; at least 1.
int countQuoteLevel(std::string_view line);

// Takes the fences two by two, the first with the second, whatever they say. All between a pair is
// code: `inCodeBlock` and of no type. An odd last fence is `isUnpairedFence`, and what follows it
// is text. A folded fence, whose partner is hidden with its code, takes no part.
void pairCodeBlockFences(std::span<Paragraph> paragraphs);

// Everything between an opening line and the next closing line is `inComment`, of no type, and no
// code, fence or table any more. An opening line without a closing one behind it opens nothing.
void pairCommentBlocks(std::span<Paragraph> paragraphs);

}  // namespace lk
