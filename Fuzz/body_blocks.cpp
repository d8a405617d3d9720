// Any note as the text of a Word document: whatever it says, every part is well-formed XML.

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

#include "LKCore/DOCX/DocumentWriter.h"
#include "Support/XMLCheck.h"

namespace {

void requireXML(const std::string& xml) {
  if (lk::test::xmlError(xml)) std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const std::string text(reinterpret_cast<const char*>(data), size);
  lk::LKBindSpec spec;
  spec.frontMatter.tableOfContents.include = size % 2 == 0;
  if (size % 3 == 0) spec.filters.paragraphStyle = lk::LKBindParagraphStyle::commonmark;
  if (size % 5 < 2) spec.filters.footnotePlacement = lk::LKBindFootnotePlacement::endOfChapter;
  spec.sceneBreak.text = text.substr(0, 9);
  lk::word::FootnotePool notes(spec.filters.footnotePlacement);
  lk::word::ImageRegistry images("/nowhere", {}, {});
  const lk::LKBindDiagrams diagrams;
  lk::word::BlockWriter blocks(spec, diagrams, notes, images);
  // Addresses are spelled so that no picture is asked of the network.
  std::string offline;
  for (const char c : text) offline.push_back(c == ':' ? ';' : c);
  const std::vector<lk::BookPiece> pieces = {
      {lk::BookPiece::Kind::chapter, text.substr(0, 60), offline, true},
      {lk::BookPiece::Kind::scene, "", offline, false, true}};
  requireXML(lk::word::DocumentWriter(spec, blocks, notes).documentXML(pieces, {"Title", "", ""}));
  if (!notes.bodies().empty()) requireXML(lk::word::notesXML(notes));
  requireXML(lk::word::numberingXML(blocks.numberedRuns()));
  return 0;
}
