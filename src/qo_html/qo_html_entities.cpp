#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>

#include <qo_html/qo_html.h>
#include <qo_html/qo_html_ascii.h>

using namespace qo_html_inner;

namespace {

struct Entity {
  char name[32];  // without ampersand and semicolon
  char value[4];  // UTF-8
};

constexpr Entity entities[] = {
#include <qo_html/qo_html_entities_table.inc>
};

constexpr std::size_t entity_count = sizeof(entities) / sizeof(entities[0]);
constexpr std::size_t longest_name = sizeof(Entity::name) - 1;

// --- Looking a name up: a hash table of positions in `entities`, made by the compiler ---

constexpr std::size_t slot_count = 8192;  // a power of two; less than a quarter is taken
constexpr std::uint16_t empty_slot = 0xFFFF;

constexpr std::size_t first_slot(std::string_view name) {
  std::uint32_t hash = static_cast<std::uint32_t>(name.size());
  for (const char c : name) hash = (hash ^ static_cast<unsigned char>(c)) * 0x01000193u;
  return (hash ^ (hash >> 15)) % slot_count;
}

constexpr std::size_t next_slot(std::size_t slot) {
  return (slot + 1) % slot_count;
}

constexpr auto make_slots() {
  std::array<std::uint16_t, slot_count> slots{};
  for (auto& slot : slots) slot = empty_slot;
  for (std::size_t i = 0; i < entity_count; ++i) {
    std::size_t slot = first_slot(entities[i].name);
    while (slots[slot] != empty_slot) slot = next_slot(slot);
    slots[slot] = static_cast<std::uint16_t>(i);
  }
  return slots;
}

constexpr std::array<std::uint16_t, slot_count> slots = make_slots();

// `name` is at most longest_name bytes long.
const Entity* find_entity(std::string_view name) {
  for (std::size_t slot = first_slot(name); slots[slot] != empty_slot; slot = next_slot(slot)) {
    const Entity& entity = entities[slots[slot]];
    if (std::memcmp(entity.name, name.data(), name.size()) == 0 &&
        entity.name[name.size()] == '\0') {
      return &entity;
    }
  }
  return nullptr;
}

// --- Decoding ---

// Where the name of a reference that begins at `name` ends; not further than a name of the table
// can reach.
const char* name_end(const char* name, const char* end) {
  if (static_cast<std::size_t>(end - name) > longest_name) end = name + longest_name;
  while (name != end && is_letter_or_digit(*name)) ++name;
  return name;
}

// Decodes what is at the ampersand `in` to `out` and returns where reading goes on. A reference
// that gives an ampersand is examined again, together with the text after it. `out` never overtakes
// what was read, since no value is longer than its reference.
const char* decode_reference(const char* in, const char* end, char*& out) {
  const char* name = in + 1;
  for (;;) {
    const char* const stop = name_end(name, end);
    const bool terminated = stop != end && *stop == ';';
    const Entity* entity =
        terminated ? find_entity({name, static_cast<std::size_t>(stop - name)}) : nullptr;
    if (entity == nullptr) {
      *out++ = '&';
      return name;
    }
    name = stop + 1;
    if (entity->value[0] == '&') continue;
    for (const char* value = entity->value; *value != '\0'; ++value) *out++ = *value;
    return name;
  }
}

const char* find_ampersand(const char* from, const char* end) {
  const void* found = std::memchr(from, '&', static_cast<std::size_t>(end - from));
  return found == nullptr ? end : static_cast<const char*>(found);
}

}  // namespace

void qo_decode_html_entities(std::string& text) {
  const char* const end = text.data() + text.size();
  const char* in = find_ampersand(text.data(), end);
  char* out = text.data() + (in - text.data());
  while (in != end) {
    in = decode_reference(in, end, out);
    const char* const next = find_ampersand(in, end);
    const std::size_t plain = static_cast<std::size_t>(next - in);
    if (out != in) std::memmove(out, in, plain);
    out += plain;
    in = next;
  }
  text.resize(static_cast<std::size_t>(out - text.data()));
}
