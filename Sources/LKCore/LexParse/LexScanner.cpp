#include "LKCore/LexParse/LexScanner.h"

#include <stdexcept>

#include "LKCore/Base/Log.h"

namespace lk {

char32_t LexScanner::scalarAt(size_t at) const {
  return at < text_.size() ? text::decode(text_, at).scalar : sentinel;
}

size_t LexScanner::after(size_t at) const {
  return at < text_.size() ? at + text::decode(text_, at).length : at;
}

char32_t LexScanner::previous() const {
  return index_ == 0 ? sentinel : text::decodeBefore(text_, index_).scalar;
}

char32_t LexScanner::next() const {
  return scalarAt(after(index_));
}

char32_t LexScanner::nextNext() const {
  return scalarAt(after(after(index_)));
}

void LexScanner::advance() {
  if (isAtEnd()) {
    log::error("Error: Lex - advance function trying to move beyond endIndex");
    throw std::logic_error("Cant Advance beyond end of text");
  }
  index_ = after(index_);
}

LexScanner::Indent LexScanner::scanLeadingWhitespace() {
  size_t tabs = 0;
  size_t spaces = 0;
  for (; index_ < text_.size(); ++index_) {
    if (text_[index_] == '\t') {
      ++tabs;
    } else if (text_[index_] == ' ') {
      ++spaces;
    } else {
      break;
    }
  }
  return {lexing::indentLevel(tabs, spaces), tabs + spaces > 0};
}

}  // namespace lk
