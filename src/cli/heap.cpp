// Memory from mimalloc. Its own operators end the process when there is none left; these throw, as
// the standard says.

#include <mimalloc.h>

#include <cstddef>
#include <new>

void* operator new(std::size_t size) {
  void* const memory = mi_malloc(size);
  if (memory == nullptr) throw std::bad_alloc();
  return memory;
}

void* operator new[](std::size_t size) {
  return operator new(size);
}

void operator delete(void* memory) noexcept {
  mi_free(memory);
}

void operator delete[](void* memory) noexcept {
  mi_free(memory);
}

void operator delete(void* memory, std::size_t) noexcept {
  mi_free(memory);
}

void operator delete[](void* memory, std::size_t) noexcept {
  mi_free(memory);
}
