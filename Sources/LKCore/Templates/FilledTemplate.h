#pragma once

// A template with its values: all that a new note takes from it.
//
//     const FilledTemplate note = filled(plant, {{"bed", "South"}}, Instant::now(), "");
//     // note.body.text == "# A new plant\n\nIn the South bed since 2026-03-14.\n\n\n"

#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "LKCore/Templates/LKTemplate.h"
#include "LKCore/Templates/LKTemplateResolver.h"

namespace lk {

struct FilledTemplate {
  std::string title;
  LKTemplateResolver::Result body;
  std::map<std::string, std::string> properties;  // as the template has them, but no empty ones
  std::vector<std::string> tags;                  // likewise

  bool operator==(const FilledTemplate&) const = default;
};

// Everything in the template may hold placeholders, default values too. A given value, the empty
// one also, wins over a parameter's default; one that the template does not ask for is put in
// where its name stands. Throws LKTemplateError, which names the parameter, when a required one
// has no value but blanks, and what `resolve` throws.
FilledTemplate filled(const LKTemplate& source, const LKTemplateResolver::Values& given,
                      Instant date, std::string_view locale);

}  // namespace lk
