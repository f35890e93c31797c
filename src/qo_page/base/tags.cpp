#include <qo_page/base/tags.h>

#include <array>
#include <cstddef>

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

constexpr std::size_t slot_of(std::string_view name) {
  std::size_t hash = name.size();
  for (const char c : name) hash = hash * 31 + static_cast<unsigned char>(lower(c));
  return (hash ^ (hash >> 9)) % slot_count;
}

constexpr std::array<std::uint8_t, slot_count> slots = [] {
  static_assert(row_count < 256);
  std::array<std::uint8_t, slot_count> made{};
  for (std::size_t i = 1; i < row_count; ++i) {
    std::size_t slot = slot_of(rows[i].name);
    while (made[slot] != 0) slot = (slot + 1) % slot_count;
    made[slot] = static_cast<std::uint8_t>(i);
  }
  return made;
}();

}  // namespace

Tag find_tag(std::string_view name) {
  if (name.empty() || name.size() > longest_name) return Tag::unknown;
  for (std::size_t slot = slot_of(name); slots[slot] != 0; slot = (slot + 1) % slot_count) {
    if (equals_without_case(rows[slots[slot]].name, name)) return static_cast<Tag>(slots[slot]);
  }
  return Tag::unknown;
}

}  // namespace qo
