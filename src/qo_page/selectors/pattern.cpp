#include <qo_page/selectors/pattern.h>

#define PCRE2_CODE_UNIT_WIDTH 8
#include <pcre2.h>

#include <memory>
#include <new>

namespace qo::selectors {

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

Pattern::Pattern(std::string_view text) {
  int error = 0;
  std::size_t offset = 0;
  code_ = pcre2_compile_8(
      reinterpret_cast<PCRE2_SPTR8>(text.data()), text.size(),
      PCRE2_UTF | PCRE2_MATCH_INVALID_UTF | PCRE2_NEVER_BACKSLASH_C | PCRE2_AUTO_CALLOUT, &error,
      &offset, nullptr);
  if (code_ != nullptr) return;
  if (error == PCRE2_ERROR_NOMEMORY || error == PCRE2_ERROR_HEAP_FAILED) throw std::bad_alloc();
  throw PatternError(error_text(error), offset);
}

Pattern::~Pattern() {
  pcre2_code_free_8(code_);
}

std::size_t Pattern::find(std::string_view text, PatternBudget& budget) const {
  budget.steps -= 1 + static_cast<std::int64_t>(text.size()) / bytes_per_step;
  if (budget.steps < 0) throw PatternBudget::Exceeded();
  const auto data = made(pcre2_match_data_create_8(1, nullptr));
  const auto context = made(pcre2_match_context_create_8(nullptr));
  Meter meter{budget};
  pcre2_set_heap_limit_8(context.get(), heap_limit);
  pcre2_set_match_limit_8(context.get(), UINT32_MAX);  // the meter counts
  pcre2_set_depth_limit_8(context.get(), UINT32_MAX);  // bounded by the heap
  pcre2_set_callout_8(context.get(), &Meter::count, &meter);
  const int result = pcre2_match_8(code_, reinterpret_cast<PCRE2_SPTR8>(text.data()), text.size(),
                                   0, 0, data.get(), context.get());
  if (result >= 0) return pcre2_get_ovector_pointer_8(data.get())[0];
  if (result == PCRE2_ERROR_NOMEMORY) throw std::bad_alloc();
  if (result == PCRE2_ERROR_NOMATCH) return std::string_view::npos;
  throw PatternBudget::Exceeded();
}

}  // namespace qo::selectors
