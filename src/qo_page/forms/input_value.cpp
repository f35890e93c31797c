#include <qo_page/forms/input_value.h>

#include <algorithm>

#include <qo_page/forms/date_value.h>
#include <qo_page/forms/number_value.h>
#include <qo_page/text/attribute_value.h>

namespace qo {

namespace {

struct TypeRow {
  std::string_view name;
  InputType type;
};

constexpr TypeRow types[] = {
    {"button", InputType::button},
    {"checkbox", InputType::checkbox},
    {"color", InputType::color},
    {"date", InputType::date},
    {"datetime-local", InputType::datetime_local},
    {"email", InputType::email},
    {"file", InputType::file},
    {"hidden", InputType::hidden},
    {"image", InputType::image},
    {"month", InputType::month},
    {"number", InputType::number},
    {"password", InputType::password},
    {"radio", InputType::radio},
    {"range", InputType::range},
    {"reset", InputType::reset},
    {"search", InputType::search},
    {"submit", InputType::submit},
    {"tel", InputType::tel},
    {"time", InputType::time},
    {"url", InputType::url},
    {"week", InputType::week},
};

std::string attribute(const Tree& tree, NodeIndex node, std::string_view name) {
  const AttributeRecord* const found = tree.find_attribute(node, name);
  std::string buffer;
  return found == nullptr ? "" : std::string(decoded_value(tree, *found, buffer));
}

std::string without_line_breaks(std::string value) {
  const auto is_break = [](char c) { return c == '\n' || c == '\r'; };
  value.erase(std::remove_if(value.begin(), value.end(), is_break), value.end());
  return value;
}

std::string_view stripped(std::string_view text) {
  while (!text.empty() && is_blank(text.front())) text.remove_prefix(1);
  while (!text.empty() && is_blank(text.back())) text.remove_suffix(1);
  return text;
}

// Addresses, each stripped, with commas between them.
std::string address_list(std::string_view value) {
  std::string out;
  for (;;) {
    const std::size_t comma = std::min(value.find(','), value.size());
    out += stripped(value.substr(0, comma));
    if (comma == value.size()) return out;
    out += ',';
    value.remove_prefix(comma + 1);
  }
}

// #rgb and #rrggbb, with or without a share of opacity, which does not count. Black otherwise.
std::string color(std::string_view value) {
  value = stripped(value);
  const bool is_short = value.size() == 4 || value.size() == 5;
  const bool has_size = is_short || value.size() == 7 || value.size() == 9;
  const bool is_hexadecimal = value.find_first_not_of("0123456789abcdefABCDEF", 1) == value.npos;
  if (!has_size || value[0] != '#' || !is_hexadecimal) return "#000000";
  std::string out = "#";
  for (const char digit : value.substr(1, is_short ? 3 : 6)) {
    out.append(is_short ? 2 : 1, lower(digit));
  }
  return out;
}

}  // namespace

InputType input_type(const Tree& tree, NodeIndex input) {
  const std::string name = attribute(tree, input, "type");
  for (const TypeRow& row : types) {
    if (equals_without_case(row.name, name)) return row.type;
  }
  return InputType::text;
}

std::string_view type_name(InputType type) {
  for (const TypeRow& row : types) {
    if (row.type == type) return row.name;
  }
  return "text";
}

bool names_charset(const Tree& tree, NodeIndex input, InputType type) {
  return type == InputType::hidden && has_value(tree, input, "name", "_charset_");
}

std::string sanitized_value(const Tree& tree, NodeIndex input, InputType type, std::string value) {
  const auto if_valid = [&value](bool is_valid) { return is_valid ? std::move(value) : ""; };
  switch (type) {
    case InputType::text:
    case InputType::search:
    case InputType::tel:
    case InputType::password:
      return without_line_breaks(std::move(value));
    case InputType::url:
      return std::string(stripped(without_line_breaks(std::move(value))));
    case InputType::email:
      value = without_line_breaks(std::move(value));
      return has_attribute(tree, input, "multiple") ? address_list(value)
                                                    : std::string(stripped(value));
    case InputType::number:
      return if_valid(is_number(value));
    case InputType::range:
      return range_value(value, {attribute(tree, input, "min"), attribute(tree, input, "max"),
                                 attribute(tree, input, "step")});
    case InputType::date:
      return if_valid(is_date(value));
    case InputType::month:
      return if_valid(is_month(value));
    case InputType::week:
      return if_valid(is_week(value));
    case InputType::time:
      return if_valid(is_time(value));
    case InputType::datetime_local:
      return local_date_time(value);
    case InputType::color:
      return color(value);
    default:
      return value;
  }
}

}  // namespace qo
