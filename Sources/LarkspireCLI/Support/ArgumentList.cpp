#include "LarkspireCLI/Support/ArgumentList.h"

namespace lk {

bool Argument::isRepeatable() const {
  return std::holds_alternative<std::vector<std::string>*>(field);
}

std::string Argument::heldText() const {
  if (auto* const* text = std::get_if<std::string*>(&field)) return **text;
  if (auto* const* number = std::get_if<int*>(&field)) return std::to_string(**number);
  return "";
}

Argument& ArgumentList::positional(std::string_view name, std::string& field,
                                   std::string_view help) {
  return entries_.emplace_back(Argument{.kind = Argument::Kind::positional,
                                        .name = name,
                                        .help = help,
                                        .valueName = name,
                                        .field = &field,
                                        .required = true});
}

Argument& ArgumentList::positional(std::string_view name, std::optional<std::string>& field,
                                   std::string_view help) {
  return entries_.emplace_back(Argument{.kind = Argument::Kind::positional,
                                        .name = name,
                                        .help = help,
                                        .valueName = name,
                                        .field = &field});
}

Argument& ArgumentList::addOption(std::string_view name, Argument::Field field,
                                  std::string_view help) {
  return entries_.emplace_back(Argument{.kind = Argument::Kind::option,
                                        .name = name,
                                        .help = help,
                                        .valueName = name.substr(2),
                                        .field = field});
}

Argument& ArgumentList::flag(std::string_view name, bool& field, std::string_view help) {
  return entries_.emplace_back(
      Argument{.kind = Argument::Kind::flag, .name = name, .help = help, .field = &field});
}

const Argument* ArgumentList::find(std::string_view name) const {
  for (const Argument& entry : entries_) {
    const bool named = entry.name == name || (!entry.shortName.empty() && entry.shortName == name);
    if (entry.kind != Argument::Kind::positional && named) return &entry;
  }
  return nullptr;
}

}  // namespace lk
