#include "bench/HeapCount.h"

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
#define SVGMODULE_HEAP_COUNTING 0
#elif defined(__has_feature)
#if __has_feature(address_sanitizer) || __has_feature(thread_sanitizer) || \
    __has_feature(memory_sanitizer)
#define SVGMODULE_HEAP_COUNTING 0
#endif
#endif
#ifndef SVGMODULE_HEAP_COUNTING
#define SVGMODULE_HEAP_COUNTING 1
#endif

#if !SVGMODULE_HEAP_COUNTING

namespace heap {
bool Available() {
    return false;
}
void Start() {}
long long Stop() {
    return 0;
}
}  // namespace heap

#else

#include <malloc.h>

#include <atomic>
#include <cerrno>
#include <cstddef>

extern "C" {
void* __libc_malloc(size_t size);
void* __libc_calloc(size_t count, size_t size);
void* __libc_realloc(void* block, size_t size);
void* __libc_memalign(size_t alignment, size_t size);
void __libc_free(void* block);
}

namespace heap {

std::atomic<bool> g_counting{false};
std::atomic<long long> g_live{0};
std::atomic<long long> g_peak{0};

void Allocated(void* block) {
    if (!block || !g_counting.load(std::memory_order_relaxed)) return;
    const long long live = g_live += (long long)malloc_usable_size(block);
    long long peak = g_peak.load(std::memory_order_relaxed);
    while (live > peak && !g_peak.compare_exchange_weak(peak, live)) {
    }
}

void Released(void* block) {
    if (block && g_counting.load(std::memory_order_relaxed))
        g_live -= (long long)malloc_usable_size(block);
}

bool Available() {
    return true;
}

void Start() {
    g_live = 0;
    g_peak = 0;
    g_counting = true;
}

long long Stop() {
    g_counting = false;
    return g_peak.load();
}

}  // namespace heap

extern "C" {

void* malloc(size_t size) {
    void* block = __libc_malloc(size);
    heap::Allocated(block);
    return block;
}

void* calloc(size_t count, size_t size) {
    void* block = __libc_calloc(count, size);
    heap::Allocated(block);
    return block;
}

void* realloc(void* block, size_t size) {
    heap::Released(block);
    void* moved = __libc_realloc(block, size);
    heap::Allocated(moved ? moved : (size ? block : nullptr));
    return moved;
}

void free(void* block) {
    heap::Released(block);
    __libc_free(block);
}

void* memalign(size_t alignment, size_t size) {
    void* block = __libc_memalign(alignment, size);
    heap::Allocated(block);
    return block;
}

void* aligned_alloc(size_t alignment, size_t size) {
    return memalign(alignment, size);
}

int posix_memalign(void** out, size_t alignment, size_t size) {
    void* block = memalign(alignment, size);
    if (!block) return ENOMEM;
    *out = block;
    return 0;
}

}  // extern "C"

#endif
