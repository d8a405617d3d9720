#include "LarkspireCLI/Support/CollectionReference.h"

#include "LKCore/Base/Text.h"
#include "LKCore/Platform/Files.h"

namespace lk {

namespace {

using Rows = std::vector<CollectionName>;

std::optional<size_t> rowWithID(const Rows& rows, const UUID& id) {
  for (size_t i = 0; i < rows.size(); ++i) {
    if (rows[i].id == id) return i;
  }
  return std::nullopt;
}

std::optional<size_t> rowNamed(const Rows& rows, const std::string& reference) {
  const std::string wanted = text::caseInsensitiveKey(reference);
  std::optional<size_t> beginsSo;
  size_t count = 0;
  for (size_t i = 0; i < rows.size(); ++i) {
    const std::string name = text::caseInsensitiveKey(rows[i].name);
    if (name == wanted) return i;
    if (!name.starts_with(wanted)) continue;
    beginsSo = i;
    ++count;
  }
  return count == 1 ? beginsSo : std::nullopt;
}

std::optional<size_t> rowWithFolder(const Rows& rows, const std::filesystem::path& path) {
  const std::filesystem::path folder = resolved(path);
  for (size_t i = 0; i < rows.size(); ++i) {
    if (resolved(rows[i].path) == folder) return i;
  }
  return std::nullopt;
}

}  // namespace

std::optional<size_t> findCollection(const Rows& rows, const std::string& reference) {
  if (reference.empty()) return std::nullopt;
  if (const auto id = UUID::parse(reference)) return rowWithID(rows, *id);
  if (const auto row = rowNamed(rows, reference)) return row;
  return rowWithFolder(rows, reference);
}

}  // namespace lk
