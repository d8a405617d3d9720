#pragma once

#include <string>

#include "LKCore/Base/Time.h"
#include "LKCore/Bind/LKBindTokenResolver.h"

namespace lk {

// What a book is bound for, beside its notes and its spec.
struct LKBindSubject {
  std::string tagName = {};  // "writing/novel"; for a book note its title
  std::string author = {};   // empty: unknown
  Instant date = {};
  std::string locale = {};  // "de_DE"; empty: the user's for dates and numbers in words
  bool isTitled = false;    // the name is a title, to be shown letter by letter

  // The values that tokens have all over the book.
  LKBindTokenContext tokens() const {
    LKBindTokenContext context;
    context.tagName = tagName;
    context.author = author;
    context.date = date;
    context.locale = locale;
    context.isTitled = isTitled;
    return context;
  }

  bool operator==(const LKBindSubject&) const = default;
};

}  // namespace lk
