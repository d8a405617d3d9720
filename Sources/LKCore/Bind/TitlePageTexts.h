#pragma once

#include <string>
#include <vector>

#include "LKCore/Bind/LKBindNoteInput.h"
#include "LKCore/Bind/LKBindSpec.h"
#include "LKCore/Bind/LKBindSubject.h"

namespace lk {

// The words of the title page that a bind spec asks for: plain text, trimmed, any of them may be
// empty. A token without a value says nothing; one that nobody knows stays as it is written.
struct TitlePageTexts {
  std::string title;
  std::string subtitle;
  std::string author;
};

// {wordcount} counts the words of the notes as they stand in the book.
TitlePageTexts titlePageTexts(const std::vector<LKBindNoteInput>& notes, const LKBindSpec& spec,
                              const LKBindSubject& subject);

}  // namespace lk
