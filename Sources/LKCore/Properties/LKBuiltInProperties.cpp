#include "LKCore/Properties/LKBuiltInProperties.h"

#include "LKCore/Properties/LKNoteRole.h"

namespace lk::LKBuiltInProperties {

namespace {

LKPropertyDefinition builtIn(std::string_view id, std::string_view name, LKPropertyType type) {
  LKPropertyDefinition definition;
  definition.id = UUID::parse(id).value();
  definition.name = name;
  definition.type = type;
  return definition;
}

}  // namespace

const LKPropertyDefinition& manuscriptRole() {
  static const LKPropertyDefinition definition = [] {
    LKPropertyDefinition made = builtIn("00000000-0000-4000-8000-000000000001", "manuscript-role",
                                        LKPropertyType::singleSelect);
    made.options.assign(kNoteRoleNames.begin(), kNoteRoleNames.end());
    return made;
  }();
  return definition;
}

const LKPropertyDefinition& project() {
  static const LKPropertyDefinition definition =
      builtIn("00000000-0000-4000-8000-000000000002", "Project", LKPropertyType::project);
  return definition;
}

const std::vector<LKPropertyDefinition>& all() {
  static const std::vector<LKPropertyDefinition> definitions = {manuscriptRole(), project()};
  return definitions;
}

const std::set<UUID>& allIDs() {
  static const std::set<UUID> ids = [] {
    std::set<UUID> made;
    for (const LKPropertyDefinition& definition : all()) made.insert(definition.id);
    return made;
  }();
  return ids;
}

}  // namespace lk::LKBuiltInProperties
