#include <algorithm>
#include <map>
#include <string>
#include <utility>

#include "LKCore/Bind/BookPasses.h"

namespace lk::LKBindEngine {

namespace {

constexpr std::string_view kSection = "<section class=\"footnotes\">";
constexpr std::string_view kSectionEnd = "</section>";
constexpr std::string_view kItem = "<li id=\"fn-";
constexpr std::string_view kItemEnd = "</li>\n";
constexpr std::string_view kBackReference = "class=\"footnote-backref\">";
constexpr std::string_view kReference = "<sup class=\"footnote-ref\"><a href=\"#fn-";
constexpr std::string_view kReferenceEnd = "</a></sup>";

struct Item {
  std::string_view label;  // as it stands in the HTML
  std::string_view html;
  size_t number = 0;  // in its chapter; 0 until a chapter refers to it
};

// An item ends behind its own link back, whatever HTML the footnote itself holds.
std::vector<Item> itemsOf(std::string_view section) {
  std::vector<Item> items;
  for (size_t start = section.find(kItem); start != std::string_view::npos;) {
    const size_t label = start + kItem.size();
    const size_t quote = section.find('"', label);
    const size_t link = section.find(kBackReference, label);
    if (quote == std::string_view::npos || link == std::string_view::npos) break;
    const size_t end = section.find(kItemEnd, link);
    if (end == std::string_view::npos) break;
    const size_t next = end + kItemEnd.size();
    items.push_back({section.substr(label, quote - label), section.substr(start, next - start)});
    start = section.find(kItem, next);
  }
  return items;
}

class Chapters {
 public:
  explicit Chapters(std::vector<Item> items) : items_(std::move(items)) {
    for (Item& item : items_) byLabel_.emplace(item.label, &item);
  }

  // The division with its references numbered anew and its items behind it.
  void append(std::string& result, std::string_view division) {
    std::vector<const Item*> own;
    size_t copied = 0;
    for (size_t start = division.find(kReference); start != std::string_view::npos;
         start = division.find(kReference, start + 1)) {
      const size_t label = start + kReference.size();
      const size_t quote = division.find('"', label);
      const size_t number = std::min(division.find('>', label), division.size() - 1) + 1;
      const size_t end = division.find_first_not_of("0123456789", number);
      if (quote == std::string_view::npos || end == std::string_view::npos) break;
      const auto item = byLabel_.find(division.substr(label, quote - label));
      if (item == byLabel_.end() || !division.substr(end).starts_with(kReferenceEnd)) continue;
      if (item->second->number == 0) {
        own.push_back(item->second);
        item->second->number = own.size();
      }
      result.append(division.substr(copied, number - copied));
      result.append(std::to_string(item->second->number));
      copied = end;
    }
    result.append(division.substr(copied));
    appendSection(result, "footnotes footnotes-chapter", own);
  }

  // What no chapter referred to.
  void appendRest(std::string& result) const {
    std::vector<const Item*> rest;
    for (const Item& item : items_) {
      if (item.number == 0) rest.push_back(&item);
    }
    appendSection(result, "footnotes", rest);
  }

 private:
  static void appendSection(std::string& result, std::string_view className,
                            const std::vector<const Item*>& items) {
    if (items.empty()) return;
    if (!result.ends_with('\n')) result.push_back('\n');
    result.append("<section class=\"").append(className).append("\">\n<hr>\n<ol>\n");
    for (const Item* item : items) result.append(item->html);
    result.append("</ol>\n").append(kSectionEnd).append("\n");
  }

  std::vector<Item> items_;
  std::map<std::string_view, Item*> byLabel_;
};

// Where a division begins: at a chapter, a part, or a page break behind one.
std::vector<size_t> divisionStarts(std::string_view body) {
  std::vector<size_t> starts = {0};
  for (size_t place = body.find('<'); place != std::string_view::npos;
       place = body.find('<', place + 1)) {
    const std::string_view rest = body.substr(place);
    const bool begins = rest.starts_with("<h1 class=\"bind-chapter\"") ||
                        rest.starts_with("<h1 class=\"bind-part\"") ||
                        rest.starts_with("<div class=\"bind-pagebreak\">");
    if (begins && place > 0) starts.push_back(place);
  }
  return starts;
}

}  // namespace

std::string relocateFootnotesByChapter(std::string html, LKBindFootnotePlacement placement) {
  if (placement != LKBindFootnotePlacement::endOfChapter) return html;
  const size_t section = html.rfind(kSection);  // the renderer's stands last
  const size_t end = section == std::string::npos ? section : html.rfind(kSectionEnd);
  if (end == std::string::npos || end < section) return html;
  const std::string_view all = html;
  std::vector<Item> items = itemsOf(all.substr(section, end - section));
  if (items.empty()) return html;

  const std::string_view body = all.substr(0, section);
  Chapters chapters(std::move(items));
  std::string result;
  result.reserve(html.size() + html.size() / 16);
  const std::vector<size_t> starts = divisionStarts(body);
  for (size_t i = 0; i < starts.size(); ++i) {
    const size_t next = i + 1 < starts.size() ? starts[i + 1] : body.size();
    chapters.append(result, body.substr(starts[i], next - starts[i]));
  }
  result.append(all.substr(end + kSectionEnd.size()));
  if (!result.ends_with('\n')) result.push_back('\n');
  chapters.appendRest(result);
  return result;
}

}  // namespace lk::LKBindEngine
