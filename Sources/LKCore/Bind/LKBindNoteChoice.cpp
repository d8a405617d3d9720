#include "LKCore/Bind/LKBindNoteChoice.h"

#include <algorithm>
#include <iterator>
#include <utility>

#include "LKCore/Base/Text.h"
#include "LKCore/Tags/TagPaths.h"

namespace lk::LKBindNoteChoice {

namespace {

std::string tagKey(std::string_view tag) {
  tag = text::trimmed(tag);
  if (tag.starts_with('#')) tag.remove_prefix(1);
  return text::caseInsensitiveKey(tag);
}

bool carries(const LKBindNoteInput& note, const std::string& key) {
  return std::ranges::any_of(note.tags, [&](const std::string& tag) {
    const std::string own = tagKey(tag);
    return own == key || tags::isBelow(own, key);
  });
}

bool isSameNote(const LKBindNoteInput& a, const LKBindNoteInput& b) {
  return a.body == b.body && text::equal(a.noteTitle, b.noteTitle);
}

void appendNew(std::vector<LKBindNoteInput>& list, LKBindNoteInput note) {
  const auto same = [&](const LKBindNoteInput& other) { return isSameNote(other, note); };
  if (std::ranges::none_of(list, same)) list.push_back(std::move(note));
}

// A name that is there but blank names nothing.
bool names(const std::optional<std::string>& name) {
  return name && !text::trimmed(*name).empty();
}

class Choice {
 public:
  Choice(const LKBindSpec& spec, const Source& source) : source_(source) {
    if (names(spec.filters.skipNotesTagged)) skipped_ = tagKey(*spec.filters.skipNotesTagged);
  }

  bool leavesOut(const LKBindNoteInput& note) const {
    return skipped_ && !skipped_->empty() && carries(note, *skipped_);
  }

  void addTitled(std::vector<LKBindNoteInput>& list, const std::optional<std::string>& title,
                 std::string_view field, LKBindNoteRole role) const {
    if (!names(title)) return;
    std::optional<LKBindNoteInput> note;
    if (source_.noteTitled) note = source_.noteTitled(*title);
    if (!note) {
      throw LKBindError("The bind spec names the note '" + *title + "' as its " +
                        std::string(field) + ", but the collection has no note of that title.");
    }
    note->role = role;
    appendNew(list, std::move(*note));
  }

  void addTagged(std::vector<LKBindNoteInput>& list, const std::optional<std::string>& tag,
                 LKBindNoteRole role) const {
    if (!names(tag) || !source_.notesTagged) return;
    for (LKBindNoteInput& note : source_.notesTagged(*tag)) {
      if (note.role == LKBindNoteRole::skip || leavesOut(note)) continue;
      if (note.role != LKBindNoteRole::titlePage) note.role = role;
      appendNew(list, std::move(note));
    }
  }

 private:
  const Source& source_;
  std::optional<std::string> skipped_;
};

}  // namespace

std::vector<LKBindNoteInput> notesOfBook(std::vector<LKBindNoteInput> notes, const LKBindSpec& spec,
                                         const Source& source) {
  const Choice choice(spec, source);
  const LKBindFrontMatter& named = spec.frontMatter;
  std::vector<LKBindNoteInput> front;
  choice.addTitled(front, named.copyrightNote, "copyright_note", LKBindNoteRole::frontMatter);
  choice.addTitled(front, named.dedicationNote, "dedication_note", LKBindNoteRole::frontMatter);
  choice.addTitled(front, named.epigraphNote, "epigraph_note", LKBindNoteRole::frontMatter);
  choice.addTagged(front, named.includeNotesWithTag, LKBindNoteRole::frontMatter);
  std::vector<LKBindNoteInput> back;
  choice.addTagged(back, spec.backMatter.includeNotesWithTag, LKBindNoteRole::endMatter);
  choice.addTitled(back, spec.backMatter.aboutAuthorNote, "about_author_note",
                   LKBindNoteRole::endMatter);

  const auto hasPlace = [&](const LKBindNoteInput& note) {
    const auto same = [&](const LKBindNoteInput& other) { return isSameNote(other, note); };
    return std::ranges::any_of(front, same) || std::ranges::any_of(back, same);
  };
  std::erase_if(
      notes, [&](const LKBindNoteInput& note) { return choice.leavesOut(note) || hasPlace(note); });
  std::vector<LKBindNoteInput> book = std::move(front);
  std::ranges::move(notes, std::back_inserter(book));
  std::ranges::move(back, std::back_inserter(book));
  return book;
}

}  // namespace lk::LKBindNoteChoice
