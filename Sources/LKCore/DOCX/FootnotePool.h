#pragma once

// The footnotes of a book: their definitions, and the numbers of those that the text refers to.

#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "LKCore/Bind/LKBindSpec.h"

namespace lk::word {

struct FootnoteBody {
  int id = 0;  // in the document; 0 and 1 are the separators'
  std::vector<std::string> lines;
};

class FootnotePool {
 public:
  explicit FootnotePool(LKBindFootnotePlacement placement) : placement_(placement) {}

  // The first definition of a label holds.
  void define(const std::string& label, std::vector<std::string> lines);
  bool isDefined(std::string_view label) const;

  // The run that stands for a reference to a label that is defined. A further one to the same note
  // shows its number again.
  std::string reference(std::string_view label);

  // The next reference is in another section.
  void beginSection() { numberInSection_ = 0; }

  bool areEndnotes() const { return placement_ != LKBindFootnotePlacement::perPage; }
  const std::vector<FootnoteBody>& bodies() const { return bodies_; }

  struct Definition {
    std::string label;
    std::vector<std::string> lines;
    int id = 0;          // 0: nobody has referred to it
    std::string number;  // as the reader sees it
  };
  // What nobody refers to, in the order of the book.
  std::vector<const Definition*> unreferenced() const;

 private:
  std::string numberText() const;

  LKBindFootnotePlacement placement_;
  std::vector<Definition> definitions_;
  std::unordered_map<std::string, size_t> places_;
  std::vector<FootnoteBody> bodies_;
  int nextID_ = 2;
  int numberInSection_ = 0;
};

}  // namespace lk::word
