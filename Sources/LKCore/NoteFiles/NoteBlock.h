#pragma once

// The line scanner under parseDocument, readIdentity and the salvage read; nobody else needs it.

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

#include "LKCore/NoteFiles/LKSalvage.h"

namespace lk {

// The first and the last line of a block.
inline constexpr std::string_view kBlockFence = "---";

// Where a newline scalar stands, in bytes; `length` is 0 at the end of the text.
struct NewlinePosition {
  size_t start = 0;
  size_t length = 0;
};

// The first newline scalar at or after byte `from`.
NewlinePosition findNewline(std::string_view text, size_t from);

// Whether the line could belong to the list above it.
bool isIndented(std::string_view line);

struct ScannedBlock {
  SalvagedFields fields;
  std::optional<std::string> title;  // never empty
  bool isClosed = false;
  std::string_view rest;  // of the text, after the block's last line
};

// The block at the head of the text; nothing when the first line is not `---`. A block without a
// closing line ends before the first line that has no key of ours.
std::optional<ScannedBlock> scanBlock(std::string_view text);

// The body as it is in memory: line feeds alone, no leading whitespace, indentation as tabs.
std::string bodyOf(std::string_view rest);

// True for the keys that the scanner reads itself, e.g. "id", "lk-hash", "hash".
bool isReadByUs(std::string_view key);

// True for a key that may never be a property: protected, or beginning with "lk-".
bool isReserved(std::string_view key);

}  // namespace lk
