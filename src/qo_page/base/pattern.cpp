#include <qo_page/base/pattern.h>

#define PCRE2_CODE_UNIT_WIDTH 8
#include <pcre2.h>

#include <algorithm>
#include <memory>
#include <new>

namespace qo {

namespace {

// Kilobytes of backtracking for one text.
constexpr std::uint32_t heap_limit = 64 * 1024;

// Bytes of text that count as one step: most are passed by a plain search for a first character.
constexpr std::int64_t bytes_per_step = 8;

struct Free {
  void operator()(pcre2_match_data_8* data) const { pcre2_match_data_free_8(data); }
  void operator()(pcre2_match_context_8* context) const { pcre2_match_context_free_8(context); }
};

template <class T>
std::unique_ptr<T, Free> made(T* object) {
  if (object == nullptr) throw std::bad_alloc();
  return std::unique_ptr<T, Free>(object);
}

std::string error_text(int code) {
  unsigned char text[256];
  const int size = pcre2_get_error_message_8(code, text, sizeof text);
  return std::string(reinterpret_cast<const char*>(text),
                     size > 0 ? static_cast<std::size_t>(size) : 0);
}

// Counts the steps of one match, and the characters that a repetition ran over between them.
struct Meter {
  PatternBudget& budget;
  std::size_t last = 0;

  static int count(pcre2_callout_block_8* block, void* data) {
    Meter& meter = *static_cast<Meter*>(data);
    const std::size_t now = block->current_position;
    const std::size_t run = now > meter.last ? now - meter.last : 0;
    meter.last = now;
    meter.budget.steps -= 1 + static_cast<std::int64_t>(run);
    return meter.budget.steps < 0 ? PCRE2_ERROR_CALLOUT : 0;
  }
};

}  // namespace

namespace {

pcre2_code_8* compiled(std::string_view text, std::uint32_t options) {
  int error = 0;
  std::size_t offset = 0;
  pcre2_code_8* const code = pcre2_compile_8(
      reinterpret_cast<PCRE2_SPTR8>(text.data()), text.size(),
      PCRE2_UTF | PCRE2_UCP | PCRE2_NEVER_BACKSLASH_C | PCRE2_AUTO_CALLOUT | options, &error,
      &offset, nullptr);
  if (code != nullptr) return code;
  if (error == PCRE2_ERROR_NOMEMORY || error == PCRE2_ERROR_HEAP_FAILED) throw std::bad_alloc();
  throw PatternError(error_text(error), offset);
}

}  // namespace

Pattern::Pattern(std::string_view text) : code_(compiled(text, 0)) {
  try {
    any_code_ = compiled(text, PCRE2_MATCH_INVALID_UTF);
  } catch (...) {
    pcre2_code_free_8(code_);
    throw;
  }
}

Pattern::~Pattern() {
  pcre2_code_free_8(code_);
  pcre2_code_free_8(any_code_);
}

namespace {

// What a pattern is matched with, and what it costs.
class Matching {
 public:
  Matching(const pcre2_code_8* code, const pcre2_code_8* any_code, std::string_view text,
           PatternBudget& budget)
      : code_(code),
        any_code_(any_code),
        text_(text),
        meter_{budget},
        data_(made(pcre2_match_data_create_from_pattern_8(code, nullptr))),
        context_(made(pcre2_match_context_create_8(nullptr))) {
    charge(text.size());
    pcre2_set_heap_limit_8(context_.get(), heap_limit);
    pcre2_set_match_limit_8(context_.get(), UINT32_MAX);  // the meter counts
    pcre2_set_depth_limit_8(context_.get(), UINT32_MAX);  // bounded by the heap
    pcre2_set_callout_8(context_.get(), &Meter::count, &meter_);
  }

  // Looks for a match from `start` on.
  bool find(std::size_t start, std::uint32_t options = 0) {
    meter_.last = start;
    int result = match(start, options);
    const bool is_no_utf8 = result <= PCRE2_ERROR_UTF8_ERR1 && result >= PCRE2_ERROR_UTF8_ERR21;
    if (is_no_utf8) {
      code_ = any_code_;
      result = match(start, options);
    }
    is_checked_ = true;
    if (result == PCRE2_ERROR_NOMEMORY) throw std::bad_alloc();
    if (result < 0 && result != PCRE2_ERROR_NOMATCH) throw PatternBudget::Exceeded();
    return result >= 0;
  }

  // Of the last match.
  std::size_t begin() const { return pcre2_get_ovector_pointer_8(data_.get())[0]; }
  std::size_t end() const { return pcre2_get_ovector_pointer_8(data_.get())[1]; }
  PatternMatch groups() const {
    const std::size_t* const offsets = pcre2_get_ovector_pointer_8(data_.get());
    PatternMatch groups;
    for (std::uint32_t i = 0; i < pcre2_get_ovector_count_8(data_.get()); ++i) {
      groups.emplace_back(offsets[2 * i], offsets[2 * i + 1]);
    }
    return groups;
  }

 private:
  // The text is checked for UTF-8 once, but each time for what takes any bytes.
  int match(std::size_t start, std::uint32_t options) {
    if (is_checked_ && code_ == any_code_) charge(text_.size() - start);
    if (is_checked_) options |= PCRE2_NO_UTF_CHECK;
    return pcre2_match_8(code_, reinterpret_cast<PCRE2_SPTR8>(text_.data()), text_.size(), start,
                         options, data_.get(), context_.get());
  }

  void charge(std::size_t bytes) {
    meter_.budget.steps -= 1 + static_cast<std::int64_t>(bytes) / bytes_per_step;
    if (meter_.budget.steps < 0) throw PatternBudget::Exceeded();
  }

  const pcre2_code_8* code_;
  const pcre2_code_8* any_code_;
  std::string_view text_;
  bool is_checked_ = false;
  Meter meter_;
  std::unique_ptr<pcre2_match_data_8, Free> data_;
  std::unique_ptr<pcre2_match_context_8, Free> context_;
};

}  // namespace

std::size_t Pattern::find(std::string_view text, PatternBudget& budget) const {
  Matching matching(code_, any_code_, text, budget);
  return matching.find(0) ? matching.begin() : std::string_view::npos;
}

// An empty match right after another one does not count.
std::vector<PatternMatch> Pattern::find_all(std::string_view text, PatternBudget& budget) const {
  Matching matching(code_, any_code_, text, budget);
  std::vector<PatternMatch> found;
  std::size_t start = 0;
  while (matching.find(start, found.empty() ? 0 : PCRE2_NOTEMPTY_ATSTART)) {
    found.push_back(matching.groups());
    start = std::max(start, matching.end());
  }
  return found;
}

std::size_t Pattern::group_count() const {
  std::uint32_t count = 0;
  pcre2_pattern_info_8(code_, PCRE2_INFO_CAPTURECOUNT, &count);
  return count;
}

std::optional<std::size_t> Pattern::group_named(const std::string& name) const {
  const int number =
      pcre2_substring_number_from_name_8(code_, reinterpret_cast<PCRE2_SPTR8>(name.c_str()));
  if (number <= 0) return std::nullopt;
  return static_cast<std::size_t>(number);
}

}  // namespace qo
