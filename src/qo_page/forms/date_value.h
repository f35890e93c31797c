// Dates and times in the one form that inputs take. The last moment is that of scripts' dates.

#ifndef QO_PAGE_FORMS_DATE_VALUE_H
#define QO_PAGE_FORMS_DATE_VALUE_H

#include <string>
#include <string_view>

namespace qo {

bool is_date(std::string_view value);   // 2024-02-29
bool is_month(std::string_view value);  // 2024-02
bool is_week(std::string_view value);   // 2024-W09
bool is_time(std::string_view value);   // 12:34, 12:34:56, 12:34:56.789

// 2024-02-29T12:34, in the shortest form of that moment; empty for any other text.
std::string local_date_time(std::string_view value);

}  // namespace qo

#endif
