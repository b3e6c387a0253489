// Heap counting for the measuring programs and the bounds test: the program replaces malloc,
// calloc, realloc, free and the aligned allocators with wrappers around the C library's,
// which add and subtract each block's usable size while counting is on.
//
// Sanitizer builds bring their own allocator; there the wrappers are left out and Available()
// is false.
#ifndef SVGMODULE_BENCH_HEAPCOUNT_H
#define SVGMODULE_BENCH_HEAPCOUNT_H

namespace heap {

// True when this program counts its heap.
bool Available();
void Start();
// Stops counting; returns the peak, in bytes above the start, held at any moment since Start.
long long Stop();

// The peak heap, in bytes above the start, that `f` holds at any moment.
template <typename F>
long long Peak(F&& f) {
    Start();
    f();
    return Stop();
}

}  // namespace heap

#endif
