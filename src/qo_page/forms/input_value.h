// The values of inputs, by type.

#ifndef QO_PAGE_FORMS_INPUT_VALUE_H
#define QO_PAGE_FORMS_INPUT_VALUE_H

#include <string>
#include <string_view>

#include <qo_page/tree/tree.h>

namespace qo {

enum class InputType : unsigned char {
  text,
  button,
  checkbox,
  color,
  date,
  datetime_local,
  email,
  file,
  hidden,
  image,
  month,
  number,
  password,
  radio,
  range,
  reset,
  search,
  submit,
  tel,
  time,
  url,
  week
};

// `text` for any other.
InputType input_type(const Tree& tree, NodeIndex input);

// As it is written in the attribute.
std::string_view type_name(InputType type);

// Whether the input sends the encoding of the page, whatever its value.
bool names_charset(const Tree& tree, NodeIndex input, InputType type);

// What the input makes of the value of its markup. What does not fit its type is dropped or
// mended.
std::string sanitized_value(const Tree& tree, NodeIndex input, InputType type, std::string value);

}  // namespace qo

#endif
