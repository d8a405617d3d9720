#pragma once

// Footnotes belong to their note. In a book the notes share one space of labels, so a label that
// an earlier note uses gets another name in the later one, where it is defined and where it is
// referred to. A reference without a definition in its own note stays the text that it is.

#include <string>
#include <vector>

namespace lk {

// Changes the bodies, which stand in the order of the book. Time is linear in all of them.
void makeFootnoteLabelsUnique(const std::vector<std::string*>& bodies);

}  // namespace lk
