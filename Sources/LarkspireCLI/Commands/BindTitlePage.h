#pragma once

#include <optional>
#include <vector>

#include "LKCore/Bind/LKBindNoteInput.h"
#include "LKCore/Bind/LKBindSpec.h"
#include "LKCore/Bind/LKBindSubject.h"

namespace lk {

// The title page that the bind spec asks for, as a note to stand before the others. Nothing when it asks
// for none, or when one of the notes is one. A token without a value leaves nothing behind, and a
// line without text is left out.
std::optional<LKBindNoteInput> titlePageOf(const LKBindSpec& spec, const LKBindSubject& subject,
                                           const std::vector<LKBindNoteInput>& notes);

}  // namespace lk
