#include <qo_page/base/tags.h>

#include <array>
#include <cstddef>
#include <cstdint>

#include <qo_page/base/ascii.h>

namespace qo {

namespace {

using tag_flags::rows;

constexpr std::size_t row_count = sizeof rows / sizeof rows[0];
static_assert(row_count == static_cast<std::size_t>(Tag::count));

// A hash table with open addressing, computed by the compiler.
constexpr std::size_t slot_count = 512;

constexpr std::size_t longest_name = [] {
  std::size_t longest = 0;
  for (const TagRow& row : rows) longest = row.name.size() > longest ? row.name.size() : longest;
  return longest;
}();

constexpr std::array<unsigned char, 256> lower_case = [] {
  std::array<unsigned char, 256> made{};
  for (std::size_t i = 0; i < made.size(); ++i) {
    made[i] = static_cast<unsigned char>(lower(static_cast<char>(i)));
  }
  return made;
}();

// A name in lower case as a number, another one for each name.
struct NameKey {
  std::uint64_t first, second;  // the first eight characters; the length and the others
};
static_assert(longest_name < 16);

constexpr NameKey key_of(std::string_view name) {
  NameKey key{0, name.size()};
  std::size_t i = 0;
  for (; i < name.size() && i < 8; ++i) {
    key.first = key.first << 8 | lower_case[static_cast<unsigned char>(name[i])];
  }
  for (; i < name.size(); ++i) {
    key.second = key.second << 8 | lower_case[static_cast<unsigned char>(name[i])];
  }
  return key;
}

constexpr std::size_t slot_of(const NameKey& key) {
  return ((key.first ^ key.second * 31) * 0x9E3779B97F4A7C15u) >> 55;  // of 64 bits, the first nine
}

struct Slots {
  std::array<NameKey, slot_count> keys{};
  std::array<Tag, slot_count> tags{};  // unknown: a free slot
};

constexpr Slots slots = [] {
  Slots made{};
  for (std::size_t i = 1; i < row_count; ++i) {
    const NameKey key = key_of(rows[i].name);
    std::size_t slot = slot_of(key);
    while (made.tags[slot] != Tag::unknown) slot = (slot + 1) % slot_count;
    made.keys[slot] = key;
    made.tags[slot] = static_cast<Tag>(i);
  }
  return made;
}();

}  // namespace

Tag find_tag(std::string_view name) {
  if (name.size() > longest_name) return Tag::unknown;
  const NameKey key = key_of(name);
  for (std::size_t slot = slot_of(key); slots.tags[slot] != Tag::unknown;
       slot = (slot + 1) % slot_count) {
    const NameKey& there = slots.keys[slot];
    if (there.first == key.first && there.second == key.second) return slots.tags[slot];
  }
  return Tag::unknown;
}

Tag find_tag_as_written(std::string_view name) {
  const Tag tag = find_tag(name);
  const bool is_same = name == name_of(tag) || name == "foreignObject";
  return is_same ? tag : Tag::unknown;
}

}  // namespace qo
