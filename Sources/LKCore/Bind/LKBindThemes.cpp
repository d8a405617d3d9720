#include "LKCore/Bind/LKBindThemes.h"

#include <algorithm>

namespace lk::LKBindThemes {

namespace {

// Documentation that people read on a screen and print: a plain sans serif, ruled sections, links
// that show.
constexpr std::string_view kGitHub = R"(/* Theme: GitHub */
body {
  font-family: -apple-system, BlinkMacSystemFont, "Segoe UI", "Noto Sans", Helvetica, Arial,
    sans-serif;
  color: #1f2328;
}
h1, h2, h3, h4, h5, h6, h1.bind-chapter, h1.bind-part {
  font-family: -apple-system, BlinkMacSystemFont, "Segoe UI", "Noto Sans", Helvetica, Arial,
    sans-serif;
  color: #1f2328;
}
h2 { border-bottom: 1px solid #d1d9e0; padding-bottom: 0.25em; }
a { color: #0969da; text-decoration: none; }
pre, code { background: #f6f8fa; }
blockquote { color: #59636e; border-left: 0.25em solid #d1d9e0; margin-left: 0; padding-left: 1em; }
th, td { border: 1px solid #d1d9e0; }
thead th { background: #f6f8fa; border: 1px solid #d1d9e0; }
.lk-admonition { border-left-color: #0969da; }
)";

// A grotesque, black on white, one red; hierarchy by weight and space alone.
constexpr std::string_view kSwiss = R"(/* Theme: Swiss */
body {
  font-family: "Helvetica Neue", Helvetica, "Nimbus Sans", "Liberation Sans", Arial, sans-serif;
  color: #111111;
}
h1, h2, h3, h4, h5, h6, h1.bind-chapter, h1.bind-part {
  font-family: "Helvetica Neue", Helvetica, "Nimbus Sans", "Liberation Sans", Arial, sans-serif;
  color: #111111;
  letter-spacing: -0.01em;
}
h1.bind-part, h1.bind-toc-title { color: #c8102e; }
a { color: #c8102e; text-decoration: none; }
pre, code { background: #f2f2f2; border-radius: 0; }
blockquote { border-left: 2px solid #c8102e; margin-left: 0; padding-left: 1em; }
th, td { border-bottom: 1px solid #111111; }
thead th { border-bottom: 2px solid #111111; }
.lk-admonition { border-left: 2px solid #c8102e; }
)";

// A book face with old-style figures, small capitals above, tables with rules at head and foot.
constexpr std::string_view kAcademic = R"(/* Theme: Academic */
body {
  font-family: "Latin Modern Roman", "TeX Gyre Pagella", "Palatino Linotype", Palatino,
    "Book Antiqua", Georgia, serif;
  color: #1a1a1a;
  font-variant-numeric: oldstyle-nums proportional-nums;
}
h1, h2, h3, h4, h5, h6, h1.bind-chapter, h1.bind-part {
  font-family: "Latin Modern Roman", "TeX Gyre Pagella", "Palatino Linotype", Palatino,
    "Book Antiqua", Georgia, serif;
  color: #1a1a1a;
}
h1.bind-part { font-variant: small-caps; letter-spacing: 0.04em; }
h3 { font-style: italic; }
a { color: #1c3d6e; text-decoration: none; }
pre, code { background: #f7f6f2; }
table { font-variant-numeric: lining-nums tabular-nums; }
table { border-top: 1.5px solid #1a1a1a; border-bottom: 1.5px solid #1a1a1a; }
th, td { border-bottom: 0; }
thead th { border-bottom: 0.75px solid #1a1a1a; }
figure.lk-figure figcaption { font-style: italic; }
.lk-admonition { border-left: 1.5px solid #1c3d6e; }
)";

}  // namespace

std::string css(std::string_view id) {
  if (id == "github") return std::string(kGitHub);
  if (id == "swiss") return std::string(kSwiss);
  if (id == "academic") return std::string(kAcademic);
  return {};
}

std::string_view displayName(std::string_view id) {
  const auto* const theme = std::ranges::find(all, id, &Descriptor::id);
  return theme == all.end() ? all.front().displayName : theme->displayName;
}

}  // namespace lk::LKBindThemes
