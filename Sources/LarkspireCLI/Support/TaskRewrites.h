#pragma once

// Projects and contexts renamed or stripped in every note of a collection, those in its trash too.
//
//     const RewrittenNotes done = ProjectsRewrite::run(collection, options, transform);
//     done.kept.refuse("project “acme”", "Re-run to rename the rest.");
//
// Every note is read before the first one is written, so that what `transform` throws then has
// changed nothing. After that each file is changed whole or not at all; one that cannot be changed
// is remembered and the rest goes on, and another run finishes the work. Plain Markdown files are no
// notes and stay; one that would change is told on standard error. So is, at a terminal, how far a
// long run has come.

#include <cstddef>
#include <filesystem>
#include <functional>
#include <string_view>

#include "LKCore/Navigation/LKProjectTextRewrite.h"
#include "LarkspireCLI/Support/GlobalOptions.h"
#include "LarkspireCLI/Support/KeptNotes.h"
#include "LarkspireCLI/Support/TaskSelector.h"

namespace lk {

struct RewrittenNotes {
  size_t files = 0;
  LKProjectTextRewrite::Counts counts;  // in those
  KeptNotes kept;
};

namespace ProjectsRewrite {

// Gives a body's new text. It changes words within lines, adds no line and takes none away, so that
// every task keeps its id.
using Transform = std::function<LKProjectTextRewrite::Rewritten(std::string_view body)>;

// `transform` spares code by itself.
RewrittenNotes run(const std::filesystem::path& collection, const GlobalOptions& options,
                   const Transform& transform);

}  // namespace ProjectsRewrite

namespace ContextsRewrite {

// For the task lines outside fenced code; `counts.metaHits` is the number of lines changed.
RewrittenNotes run(const std::filesystem::path& collection, const GlobalOptions& options,
                   const LineTransform& lineTransform);

// What that does to one body.
LKProjectTextRewrite::Rewritten rewritten(std::string_view body,
                                          const LineTransform& lineTransform);

}  // namespace ContextsRewrite

}  // namespace lk
