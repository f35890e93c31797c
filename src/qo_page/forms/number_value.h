// Numbers as inputs take them.

#ifndef QO_PAGE_FORMS_NUMBER_VALUE_H
#define QO_PAGE_FORMS_NUMBER_VALUE_H

#include <string>
#include <string_view>

namespace qo {

bool is_number(std::string_view value);

// The attributes of a range, empty where they are not there.
struct RangeLimits {
  std::string min, max, step;
};

// The number of a range that is nearest to the value: within the limits and a whole number of steps
// from the lower one. Without a number, that in the middle. Arithmetic is decimal and exact;
// numbers of more than 18 digits stay as written.
std::string range_value(const std::string& value, const RangeLimits& limits);

}  // namespace qo

#endif
