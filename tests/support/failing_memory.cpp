#include "support/failing_memory.h"

#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <new>

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
#define KZGIS_HEAP_IS_OWNED
#elif defined(__has_feature)
#if __has_feature(address_sanitizer) || __has_feature(thread_sanitizer)
#define KZGIS_HEAP_IS_OWNED
#endif
#endif
#if !defined(__GLIBC__)
#define KZGIS_HEAP_IS_OWNED
#endif

namespace {

long to_go = -1;  // -1: none is to fail
bool later_too = false;
bool failed = false;
long live = 0;

/// Counts one allocation; false when it is to fail.
bool granted() {
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

#ifdef KZGIS_HEAP_IS_OWNED

const bool failing_memory::c_heap_fails = false;

namespace {

void* allocate(std::size_t size) {
  if (size > PTRDIFF_MAX || !granted()) return nullptr;  // sanitizers refuse such sizes loudly
  return counted(std::malloc(size == 0 ? 1 : size));
}
void release(void* block) {
  if (block != nullptr) --live;
  std::free(block);
}

}  // namespace

#else

const bool failing_memory::c_heap_fails = true;

// The host's own, under the names that glibc gives them for those who replace them.
// NOLINTBEGIN(bugprone-reserved-identifier)
extern "C" {
void* __libc_malloc(std::size_t size);
void* __libc_calloc(std::size_t count, std::size_t size);
void* __libc_realloc(void* block, std::size_t size);
void __libc_free(void* block);

void* malloc(std::size_t size) { return granted() ? counted(__libc_malloc(size)) : nullptr; }
void* calloc(std::size_t count, std::size_t size) {
  return granted() ? counted(__libc_calloc(count, size)) : nullptr;
}
void* realloc(void* block, std::size_t size) {
  if (!granted()) return nullptr;
  void* const grown = __libc_realloc(block, size);
  return block == nullptr ? counted(grown) : grown;
}
void free(void* block) {
  if (block != nullptr) --live;
  __libc_free(block);
}
}
// NOLINTEND(bugprone-reserved-identifier)

namespace {

void* allocate(std::size_t size) { return malloc(size == 0 ? 1 : size); }
void release(void* block) { free(block); }

}  // namespace

#endif

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

void* operator new(std::size_t size) {
  void* const block = allocate(size);
  if (block == nullptr) throw std::bad_alloc();
  return block;
}
void* operator new[](std::size_t size) { return operator new(size); }
void* operator new(std::size_t size, const std::nothrow_t&) noexcept { return allocate(size); }
void* operator new[](std::size_t size, const std::nothrow_t&) noexcept { return allocate(size); }
void operator delete(void* block) noexcept { release(block); }
void operator delete[](void* block) noexcept { release(block); }
void operator delete(void* block, std::size_t) noexcept { release(block); }
void operator delete[](void* block, std::size_t) noexcept { release(block); }
