// An array that grows by little more than what it holds.

#ifndef QO_PAGE_BASE_ARRAY_H
#define QO_PAGE_BASE_ARRAY_H

#include <cstddef>
#include <cstdlib>
#include <memory>
#include <new>
#include <type_traits>

namespace qo {

// For values that are moved by copying their bytes: the heap can then often grow a large block
// where it is, and give back its end.
template <class T>
class Array {
  static_assert(std::is_trivially_copyable_v<T>);

 public:
  std::size_t size() const { return size_; }
  bool empty() const { return size_ == 0; }
  T& operator[](std::size_t index) { return values_[index]; }
  const T& operator[](std::size_t index) const { return values_[index]; }
  T& back() { return values_[size_ - 1]; }
  const T* begin() const { return values_.get(); }
  const T* end() const { return values_.get() + size_; }

  // Throws std::bad_alloc, and then is as it was.
  void push_back(const T& value) {
    if (size_ == capacity_) resize_block(capacity_ + capacity_ / 2 + first_capacity);
    values_[size_++] = value;
  }

  // Gives back what is not used.
  void trim() {
    if (size_ != 0 && size_ != capacity_) resize_block(size_);
  }

 private:
  static constexpr std::size_t first_capacity = 16;

  struct Free {
    void operator()(T* values) const { std::free(values); }
  };

  void resize_block(std::size_t capacity) {
    void* const block = std::realloc(values_.get(), capacity * sizeof(T));
    if (block == nullptr) throw std::bad_alloc();
    values_.release();  // is the block, or was given back
    values_.reset(static_cast<T*>(block));
    capacity_ = capacity;
  }

  std::unique_ptr<T[], Free> values_;
  std::size_t size_ = 0;
  std::size_t capacity_ = 0;
};

}  // namespace qo

#endif
