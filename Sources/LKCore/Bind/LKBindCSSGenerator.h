#pragma once

// The style sheet of a book, for paper first: page, margins and running heads, type, headings, scene
// breaks, code, title pages, pictures, and what is the same in every book (contents, tables,
// footnotes). It says what a print engine may use; an engine without page margin boxes, running
// strings or named pages leaves those out and sets the book all the same.
//
// Every text of the bind spec, the tag and the author stands in quotes that it cannot leave. Pure
// functions; nothing throws.

#include <string>
#include <string_view>

#include "LKCore/Bind/LKBindSpec.h"
#include "LKCore/Bind/LKBindSubject.h"

namespace lk::LKBindCSSGenerator {

enum class Level { part, h1, h2, h3 };

// All parts in their order, without a theme.
std::string css(const LKBindSpec& spec, const LKBindSubject& subject);

// The page box with its running heads. `context` is that of the whole book: {title} is its title.
std::string pageRule(const LKBindSpec& spec, const LKBindTokenContext& context);
std::string bodyRules(const LKBindTypography& typography);
std::string headingRule(Level level, const LKBindHeading& heading,
                        const LKBindTypography& typography);
std::string sceneBreakRules(const LKBindSceneBreak& sceneBreak);
std::string codeRules(const LKBindTypography& typography);
std::string roleRules(const LKBindSpec& spec);
std::string imageRules();
// Page breaks, diagrams, tables, contents, footnotes, captioned figures.
std::string fixedRules();

// A running head as a value of `content`: quoted texts and counters. Empty when it prints nothing.
// A token without a value prints nothing, one that nobody knows its own letters. {page} is the value
// of `pageCounter`.
std::string resolveRunning(std::string_view text, const LKBindTokenContext& context,
                           LKBindPageNumberStyle numbers, std::string_view pageCounter = "page");

// Whether the pages before the first chapter count for themselves, so that it begins with page 1.
bool countsFrontMatterApart(const LKBindHeaderFooter& heads);

// The name of a numbering as style sheets have it: "decimal", "lower-roman".
std::string_view counterStyleName(LKBindPageNumberStyle style);

// The family with what stands in for it where it is missing.
std::string cssFontFamily(std::string_view name);

}  // namespace lk::LKBindCSSGenerator
