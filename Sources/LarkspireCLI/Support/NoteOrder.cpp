#include "LarkspireCLI/Support/NoteOrder.h"

#include <algorithm>
#include <cstdint>
#include <string>
#include <utility>

#include "LKCore/Base/Text.h"

namespace lk {

namespace {

struct RankedNote {
  std::pair<int64_t, int64_t> rank;  // ascending
  LKNote* note = nullptr;
  std::string titleKey;  // where ranks tie
};

std::pair<int64_t, int64_t> rankOf(const LKNote& note, NoteOrder order) {
  switch (order) {
    case NoteOrder::modified:
      return {-note.sortModifiedDate.seconds, 0};
    case NoteOrder::created:
      return {-note.creationDate.seconds, -note.creationDate.nanoseconds};
    case NoteOrder::size:
      return {-note.size, 0};
    case NoteOrder::title:
      break;
  }
  return {0, 0};
}

using RankedNotes = std::vector<RankedNote>;

// Notes of one rank. Each title's key is made once: comparing titles costs far more than the keys.
void sortByTitle(RankedNotes::iterator first, RankedNotes::iterator last) {
  for (auto it = first; it != last; ++it) it->titleKey = text::localizedKey(it->note->title);
  std::sort(first, last, [](const RankedNote& a, const RankedNote& b) {
    const int order = a.titleKey.compare(b.titleKey);
    return order != 0 ? order < 0 : a.note->fileURL < b.note->fileURL;
  });
}

}  // namespace

NoteOrder noteOrder(std::string_view name) {
  if (name == "created") return NoteOrder::created;
  if (name == "title") return NoteOrder::title;
  if (name == "size") return NoteOrder::size;
  return NoteOrder::modified;
}

void sortNotes(std::vector<LKNote*>& notes, NoteOrder order) {
  RankedNotes ranked;
  ranked.reserve(notes.size());
  for (LKNote* note : notes) ranked.push_back({rankOf(*note, order), note, {}});
  std::ranges::stable_sort(ranked, {}, &RankedNote::rank);
  for (auto first = ranked.begin(); first != ranked.end();) {
    const auto last = std::find_if(
        first, ranked.end(), [&](const RankedNote& each) { return each.rank != first->rank; });
    if (last - first > 1) sortByTitle(first, last);
    first = last;
  }
  for (size_t i = 0; i < notes.size(); ++i) notes[i] = ranked[i].note;
}

}  // namespace lk
