// The names of HTML's elements, and what the standard says of each.

#ifndef QO_PAGE_BASE_TAGS_H
#define QO_PAGE_BASE_TAGS_H

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace qo {

using TagFlags = std::uint32_t;

namespace tag_flags {

constexpr TagFlags none = 0;
constexpr TagFlags void_content = 1u << 0;   // has no content and no end tag
constexpr TagFlags special = 1u << 1;        // ends the search for what an end tag closes
constexpr TagFlags scope = 1u << 2;          // bounds the scope of most names
constexpr TagFlags list_scope = 1u << 3;     // bounds that of li, too
constexpr TagFlags button_scope = 1u << 4;   // bounds that of p, too
constexpr TagFlags table_scope = 1u << 5;    // bounds that of the parts of a table
constexpr TagFlags closes_p = 1u << 6;       // its start tag ends an open p
constexpr TagFlags heading = 1u << 7;        // h1 to h6
constexpr TagFlags formatting = 1u << 8;     // b, i, a, ...
constexpr TagFlags marker = 1u << 9;         // formatting outside it does not count within
constexpr TagFlags head_content = 1u << 10;  // may be in a head
constexpr TagFlags rcdata = 1u << 11;        // its content is text with references
constexpr TagFlags raw_text = 1u << 12;      // its content is text
constexpr TagFlags breakout = 1u << 13;      // ends svg and math
constexpr TagFlags scoped_end = 1u << 14;    // its end tag closes what is in scope, special or not
constexpr TagFlags table_part = 1u << 15;    // caption, tr, td, ...
constexpr TagFlags row_group = 1u << 16;     // tbody, thead, tfoot
constexpr TagFlags cell = 1u << 17;          // td, th
constexpr TagFlags block_level = 1u << 18;   // its text is no part of the line around it

constexpr TagFlags block = special | closes_p | scoped_end | block_level;

}  // namespace tag_flags

// Each name once, with what is true of it. Names that nothing is said of are there for selectors.
// clang-format off
#define QO_TAGS(X) \
  X(a, formatting) X(abbr, none) X(address, block) X(applet, special | scope | marker | scoped_end) \
  X(area, special | void_content) X(article, block) X(aside, block) X(audio, none) \
  X(b, formatting | breakout) X(base, special | void_content | head_content) \
  X(basefont, special | void_content | head_content) X(bdi, none) X(bdo, none) \
  X(bgsound, special | void_content | head_content) X(big, formatting | breakout) \
  X(blockquote, block | breakout) X(body, special | breakout | block_level) X(br, special | void_content | breakout | block_level) \
  X(button, special | button_scope | scoped_end | block_level) X(canvas, none) \
  X(caption, special | scope | marker | table_part | block_level) X(center, block | breakout) X(cite, none) \
  X(code, formatting | breakout) X(col, special | void_content | table_part) \
  X(colgroup, special | table_part) X(data, none) X(datalist, none) X(dd, block | breakout) X(del, none) \
  X(desc, none) X(details, block) X(dfn, none) X(dialog, block) X(dir, block) X(div, block | breakout) \
  X(dl, block | breakout) X(dt, block | breakout) X(em, formatting | breakout) \
  X(embed, special | void_content | breakout) X(fieldset, block) X(figcaption, block) X(figure, block) \
  X(font, formatting) X(footer, block) X(foreignobject, none) X(form, special | closes_p | block_level) \
  X(frame, special | void_content) X(frameset, special | block_level) X(h1, block | heading | breakout) \
  X(h2, block | heading | breakout) X(h3, block | heading | breakout) X(h4, block | heading | breakout) \
  X(h5, block | heading | breakout) X(h6, block | heading | breakout) X(head, special | breakout | block_level) \
  X(header, block) X(hgroup, block) X(hr, special | void_content | closes_p | breakout | block_level) \
  X(html, special | scope | table_scope | block_level) X(i, formatting | breakout) X(iframe, special | raw_text) \
  X(image, void_content) X(img, special | void_content | breakout) X(input, special | void_content) \
  X(ins, none) X(kbd, none) X(keygen, special | void_content) X(label, none) X(legend, block_level) \
  X(li, block | breakout) X(link, special | void_content | head_content) \
  X(listing, block | breakout) X(main, block) X(malignmark, none) X(map, none) X(mark, none) \
  X(marquee, special | scope | marker | scoped_end) X(math, none) X(menu, block | breakout) \
  X(meta, special | void_content | head_content | breakout) X(meter, none) X(mglyph, none) X(mi, none) \
  X(mn, none) X(mo, none) X(ms, none) X(mtext, none) X(nav, block) X(nobr, formatting | breakout) \
  X(noembed, special | raw_text) X(noframes, special | raw_text | head_content) \
  X(noscript, special | head_content) X(object, special | scope | marker | scoped_end) \
  X(ol, block | list_scope | breakout) X(optgroup, block_level) X(option, block_level) X(output, none) \
  X(p, block | breakout) X(param, special | void_content) X(path, none) X(picture, none) \
  X(plaintext, special | closes_p | block_level) X(pre, block | breakout) X(progress, none) X(q, none) X(rb, none) \
  X(rp, none) X(rt, none) X(rtc, none) X(ruby, breakout) X(s, formatting | breakout) X(samp, none) \
  X(script, special | raw_text | head_content) X(search, block) X(section, block) \
  X(select, special | scoped_end | block_level) X(slot, none) X(small, formatting | breakout) \
  X(source, special | void_content) X(span, breakout) X(strike, formatting | breakout) \
  X(strong, formatting | breakout) X(style, special | raw_text | head_content) X(sub, breakout) \
  X(summary, block) X(sup, breakout) X(svg, none) X(table, special | scope | table_scope | breakout | block_level) \
  X(tbody, special | table_part | row_group | block_level) X(td, special | scope | marker | table_part | cell | block_level) \
  X(template, special | scope | table_scope | marker | head_content) \
  X(textarea, special | rcdata | block_level) X(tfoot, special | table_part | row_group | block_level) \
  X(th, special | scope | marker | table_part | cell | block_level) X(thead, special | table_part | row_group | block_level) \
  X(time, none) X(title, special | rcdata | head_content | block_level) X(tr, special | table_part | block_level) \
  X(track, special | void_content) X(tt, formatting | breakout) X(u, formatting | breakout) \
  X(ul, block | list_scope | breakout) X(var, breakout) X(video, none) X(wbr, special | void_content) \
  X(xmp, special | closes_p | raw_text | block_level)
// clang-format on

enum class Tag : std::uint8_t {
  unknown,
#define QO_TAG(name, flags) name##_,
  QO_TAGS(QO_TAG)
#undef QO_TAG
      count
};

struct TagRow {
  std::string_view name;  // in lower case
  TagFlags flags;
};

namespace tag_flags {

// By tag.
inline constexpr TagRow rows[] = {{"", none},
#define QO_TAG(name, flags) {#name, flags},
                                  QO_TAGS(QO_TAG)
#undef QO_TAG
};

}  // namespace tag_flags

// The tag of that name in any case; `unknown` for any other name.
Tag find_tag(std::string_view name);

// That of a name which HTML has in small letters, and of "foreignObject"; `unknown` for others.
Tag find_tag_as_written(std::string_view name);

inline TagFlags flags_of(Tag tag) {
  return tag_flags::rows[static_cast<std::size_t>(tag)].flags;
}

// The name in lower case; empty for `unknown`.
inline std::string_view name_of(Tag tag) {
  return tag_flags::rows[static_cast<std::size_t>(tag)].name;
}

inline bool has(Tag tag, TagFlags flags) {
  return (flags_of(tag) & flags) != 0;
}

}  // namespace qo

#endif
