#include "LKCore/PDF/BrowserHyphenation.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstdint>
#include <map>
#include <numeric>
#include <utility>
#include <vector>

#include "LKCore/Base/Text.h"
#include "LKCore/Platform/Files.h"

namespace lk {

namespace {

// Numbers are little-endian and of 32 bits. A header names the places of three tables.
//
//   alphabet  from a code point to a small number; 0 is a word's edge
//   tree      each node has a place of its own, and a slot holds two things: the weights of the node
//             at that place, and one edge, which stands at its node's place plus its letter
//   weights   for each list: how many, how many zeros follow, where they begin
constexpr uint32_t kDictionaryMark = 0x62ad7968;
constexpr char32_t kFirstLetter = '\'';
constexpr char32_t kLastLetter = 'z';
constexpr uint32_t kLetterBits = 7;
constexpr const char* kDictionaryVersion = "120.0.6050.0";

uint32_t letterNumber(char letter) {
  return letter == '.' ? 0 : static_cast<uint32_t>(letter) - kFirstLetter + 1;
}

// The weights without the zeros at both ends, of which those at the right are counted.
struct PatternWeights {
  std::string values;
  uint32_t zerosAfter = 0;

  auto operator<=>(const PatternWeights&) const = default;
};

PatternWeights trimmedWeights(std::string_view values) {
  const size_t first = values.find_first_not_of('\0');
  if (first == std::string_view::npos) return {};
  const size_t last = values.find_last_not_of('\0');
  return {std::string(values.substr(first, last + 1 - first)),
          static_cast<uint32_t>(values.size() - 1 - last)};
}

struct PatternNode {
  std::vector<std::pair<uint32_t, uint32_t>> edges;  // letter, node
  uint32_t weights = 0;
};

class PatternTree {
 public:
  PatternTree() : nodes_(1), numbers_{{PatternWeights{}, 0}} {}

  void add(std::string_view pattern) {
    uint32_t node = 0;
    std::string values(1, '\0');
    for (const char c : pattern) {
      if (c >= '0' && c <= '9') {
        values.back() = static_cast<char>(c - '0');
      } else {
        node = child(node, letterNumber(c));
        values += '\0';
      }
    }
    const auto next = static_cast<uint32_t>(numbers_.size());
    nodes_[node].weights = numbers_.try_emplace(trimmedWeights(values), next).first->second;
  }

  const std::vector<PatternNode>& nodes() const { return nodes_; }

  std::vector<PatternWeights> weights() const {
    std::vector<PatternWeights> result(numbers_.size());
    for (const auto& [weights, number] : numbers_) result[number] = weights;
    return result;
  }

 private:
  uint32_t child(uint32_t node, uint32_t letter) {
    for (const auto& [edge, target] : nodes_[node].edges) {
      if (edge == letter) return target;
    }
    const auto made = static_cast<uint32_t>(nodes_.size());
    nodes_[node].edges.emplace_back(letter, made);
    nodes_.emplace_back();
    return made;
  }

  std::vector<PatternNode> nodes_;
  std::map<PatternWeights, uint32_t> numbers_;
};

struct PackedTree {
  std::vector<uint32_t> places;   // of the nodes
  std::vector<uint32_t> letters;  // of the edge in each slot
  std::vector<uint32_t> targets;  // the node of the edge in each slot
};

// Finds room for one node after the other, those with many edges first, when there is most of it.
class TreePacker {
 public:
  PackedTree pack(const std::vector<PatternNode>& nodes) {
    std::vector<uint32_t> order(nodes.size());
    std::iota(order.begin(), order.end(), 0U);
    std::stable_sort(order.begin() + 1, order.end(), [&](uint32_t a, uint32_t b) {
      return nodes[a].edges.size() > nodes[b].edges.size();
    });
    packed_.places.resize(nodes.size());
    for (const uint32_t node : order) put(node, nodes[node]);
    return std::move(packed_);
  }

 private:
  void put(uint32_t number, const PatternNode& node) {
    uint32_t place = firstPlace(node);
    while (!fits(place, node)) ++place;
    isPlace_[place] = true;
    packed_.places[number] = place;
    for (const auto& [letter, target] : node.edges) {
      isEdge_[place + letter] = true;
      packed_.letters[place + letter] = letter;
      packed_.targets[place + letter] = target;
    }
  }

  // Slots never become free again, so that a place without room for a letter has none for it ever.
  uint32_t firstPlace(const PatternNode& node) {
    const bool isLeaf = node.edges.empty();
    PatternNode least;
    if (!isLeaf) least.edges.push_back(node.edges.front());
    uint32_t& place = firstPlaces_[isLeaf ? firstPlaces_.size() - 1 : node.edges.front().first];
    while (!fits(place, least)) ++place;
    return place;
  }

  bool fits(uint32_t place, const PatternNode& node) {
    const size_t needed = place + (size_t{1} << kLetterBits);
    if (isPlace_.size() < needed) {
      isPlace_.resize(needed);
      isEdge_.resize(needed);
      packed_.letters.resize(needed);
      packed_.targets.resize(needed);
    }
    return !isPlace_[place] && std::none_of(node.edges.begin(), node.edges.end(), [&](auto& edge) {
      return isEdge_[place + edge.first];
    });
  }

  PackedTree packed_;
  std::vector<bool> isPlace_;
  std::vector<bool> isEdge_;
  std::array<uint32_t, (size_t{1} << kLetterBits) + 1> firstPlaces_{};  // by letter; last: none
};

void addNumber(std::string& out, uint32_t number) {
  for (int shift = 0; shift < 32; shift += 8) out += static_cast<char>((number >> shift) & 0xFF);
}

std::string alphabetTable() {
  std::string table;
  addNumber(table, 0);
  addNumber(table, kFirstLetter);
  addNumber(table, kLastLetter + 1);
  for (char32_t letter = kFirstLetter; letter <= kLastLetter; ++letter) {
    const bool isLetter = letter == '\'' || letter >= 'a';
    table += isLetter ? static_cast<char>(letterNumber(static_cast<char>(letter))) : '\0';
  }
  table.resize((table.size() + 3) / 4 * 4);
  return table;
}

// Empty when a slot would need more than 32 bits.
std::string treeTable(const PatternTree& tree, size_t weights) {
  const PackedTree packed = TreePacker().pack(tree.nodes());
  const auto slots = static_cast<uint32_t>(packed.letters.size());
  const auto linkBits = static_cast<uint32_t>(std::bit_width(slots));
  const uint32_t weightShift = kLetterBits + linkBits;
  if (weightShift + static_cast<uint32_t>(std::bit_width(weights)) > 32) return {};
  std::vector<uint32_t> data(slots);
  for (uint32_t slot = 0; slot < slots; ++slot) {
    const uint32_t target = packed.targets[slot];
    if (target != 0) data[slot] = packed.letters[slot] | packed.places[target] << kLetterBits;
  }
  for (size_t node = 0; node < packed.places.size(); ++node) {
    data[packed.places[node]] |= tree.nodes()[node].weights << weightShift;
  }
  std::string table;
  for (const uint32_t number : {0U, (1U << kLetterBits) - 1, kLetterBits,
                                ((1U << linkBits) - 1) << kLetterBits, weightShift, slots}) {
    addNumber(table, number);
  }
  for (const uint32_t slot : data) addNumber(table, slot);
  return table;
}

std::string weightsTable(const std::vector<PatternWeights>& lists) {
  std::string entries;
  std::string values;
  for (const PatternWeights& list : lists) {
    addNumber(entries, static_cast<uint32_t>(list.values.size()) << 26 | list.zerosAfter << 20 |
                           static_cast<uint32_t>(values.size()));
    values += list.values;
  }
  std::string table;
  addNumber(table, 0);
  addNumber(table, static_cast<uint32_t>(lists.size()));
  addNumber(table, static_cast<uint32_t>(16 + entries.size()));
  addNumber(table, static_cast<uint32_t>(values.size()));
  return table + entries + values;
}

bool isPattern(std::string_view line) {
  const auto isPart = [](char c) {
    return (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || c == '\'' || c == '.';
  };
  return !line.empty() && line.size() < 32 && std::all_of(line.begin(), line.end(), isPart);
}

}  // namespace

std::string hyphenationDictionary(std::string_view patterns) {
  PatternTree tree;
  for (const std::string_view line : text::splitLines(patterns)) {
    if (isPattern(line)) tree.add(line);
  }
  const std::vector<PatternWeights> weights = tree.weights();
  const std::string alphabet = alphabetTable();
  const std::string packed = treeTable(tree, weights.size());
  if (packed.empty()) return {};
  const std::string lists = weightsTable(weights);
  std::string dictionary;
  size_t offset = 24;
  addNumber(dictionary, kDictionaryMark);
  addNumber(dictionary, 0);
  for (const size_t size : {alphabet.size(), packed.size(), lists.size(), size_t{0}}) {
    addNumber(dictionary, static_cast<uint32_t>(offset));
    offset += size;
  }
  return dictionary + alphabet + packed + lists;
}

void addHyphenation(std::string_view patterns, const std::filesystem::path& profile) {
  const std::string dictionary = hyphenationDictionary(patterns);
  if (dictionary.empty()) return;
  const std::string version = kDictionaryVersion;
  const std::filesystem::path folder = profile / "hyphen-data" / version;
  createFolders(folder);
  replaceFile(folder / "hyph-en-us.hyb", dictionary);
  replaceFile(folder / "manifest.json",
              R"({"manifest_version": 2, "name": "hyphens-data", "version": ")" + version + "\"}");
}

}  // namespace lk
