#include "support/failing_memory.h"

#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <new>

#include "support/sanitized.h"

// What those who replace the C heap call instead: glibc's own names for it, or the
// address sanitizer's, which goes on finding leaks and overflows that way.
// NOLINTBEGIN(bugprone-reserved-identifier)
#ifdef KZGIS_ADDRESS_SANITIZER
#define KZGIS_HEAP(name) __interceptor_##name
#else
#define KZGIS_HEAP(name) __libc_##name
#endif

extern "C" {
void* KZGIS_HEAP(malloc)(std::size_t size);
void* KZGIS_HEAP(calloc)(std::size_t count, std::size_t size);
void* KZGIS_HEAP(realloc)(void* block, std::size_t size);
void KZGIS_HEAP(free)(void* block);
}
// NOLINTEND(bugprone-reserved-identifier)

namespace {

long to_go = -1;  // -1: none is to fail
bool later_too = false;
bool failed = false;
long live = 0;

/// Counts one allocation; false when it is to fail.
bool granted(std::size_t size) {
  if (size > PTRDIFF_MAX) return false;  // as glibc says by itself; the sanitizer ends the program
  if (to_go < 0) return true;
  if (to_go > 0) {
    --to_go;
    return true;
  }
  if (failed && !later_too) return true;
  failed = true;
  errno = ENOMEM;
  return false;
}

void* counted(void* block) {
  if (block != nullptr) ++live;
  return block;
}

}  // namespace

extern "C" {
void* malloc(std::size_t size) {
  return granted(size) ? counted(KZGIS_HEAP(malloc)(size)) : nullptr;
}
void* calloc(std::size_t count, std::size_t size) {
  return granted(size) ? counted(KZGIS_HEAP(calloc)(count, size)) : nullptr;
}
void* realloc(void* block, std::size_t size) {
  if (!granted(size)) return nullptr;
  void* const grown = KZGIS_HEAP(realloc)(block, size);
  return block == nullptr ? counted(grown) : grown;
}
void free(void* block) {
  if (block != nullptr) --live;
  KZGIS_HEAP(free)(block);
}
}

namespace failing_memory {

void fail_from(long k, bool all_later) {
  failed = false;
  later_too = all_later;
  to_go = k;
}

bool succeed() {
  to_go = -1;
  return failed;
}

long live_blocks() { return live; }

}  // namespace failing_memory

void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
  return malloc(size == 0 ? 1 : size);
}
void* operator new(std::size_t size) {
  void* const block = operator new(size, std::nothrow);
  if (block == nullptr) throw std::bad_alloc();
  return block;
}
void* operator new[](std::size_t size) { return operator new(size); }
void* operator new[](std::size_t size, const std::nothrow_t&) noexcept {
  return operator new(size, std::nothrow);
}
void operator delete(void* block) noexcept { free(block); }
void operator delete[](void* block) noexcept { free(block); }
void operator delete(void* block, std::size_t) noexcept { free(block); }
void operator delete[](void* block, std::size_t) noexcept { free(block); }
