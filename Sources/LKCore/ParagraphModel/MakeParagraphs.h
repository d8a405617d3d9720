#pragma once

// From a text to its paragraphs.
//
//   for (const Paragraph& paragraph : makeParagraphs(text)) std::puts(describe(paragraph).c_str());
//
// The ranges follow one another and cover the text: every line end belongs to the line before it.
// Time is linear in the text, which must be valid UTF-8.

#include <string_view>
#include <vector>

#include "LKCore/Base/TextRange.h"
#include "LKCore/ParagraphModel/LKEditorCapabilities.h"
#include "LKCore/ParagraphModel/Paragraph.h"

namespace lk {

// The lines of a text with their line ends, in bytes: LF, CR, CR LF, U+0085, U+2028 and U+2029 end
// a line. The empty text has none, and a line end at the end of the text opens no further one.
// U+000B and U+000C end no paragraph, though the lexers stop there.
std::vector<TextRange> paragraphLines(std::string_view text);

// Who asks for a line's type. A footnote's definition is known as one only after an edit of its
// line; a whole text read anew leaves it plain.
enum class LineReading { wholeText, afterEdit };

// Sets `type`, `tabLevel` and `quoteLevel` from the line's text, as the block lexer reads it up to
// its first line end; of more than one mark the last counts.
void classify(Paragraph& paragraph, std::string_view line, LineReading reading);

// The paragraphs of a text with their text and types, with code fences, tables and comments
// worked out. Throws Error when the kernel has no random numbers.
std::vector<Paragraph> makeParagraphs(std::string_view text,
                                      const LKEditorCapabilities& capabilities = {});

}  // namespace lk
