#include "LKCore/NoteFiles/LKSalvage.h"

#include "LKCore/NoteFiles/NoteBlock.h"

namespace lk {

std::optional<SalvagedDocument> extractSalvageableFields(std::string_view text) {
  std::optional<ScannedBlock> block = scanBlock(text);
  if (!block) return std::nullopt;
  const bool hasOurs = block->fields != SalvagedFields{} || block->title;
  if (!block->isClosed && !hasOurs) return std::nullopt;
  return SalvagedDocument{std::move(block->fields), bodyOf(block->rest)};
}

}  // namespace lk
