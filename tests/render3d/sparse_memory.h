#ifndef CORVANE_TESTS_RENDER3D_SPARSE_MEMORY_H
#define CORVANE_TESTS_RENDER3D_SPARSE_MEMORY_H

#include <cstddef>

namespace corvane::tests
{
// Zeroed memory that may be larger than the machine's: only pages that somebody touches exist. One at a time.
class SparseMemory
{
public:
    explicit SparseMemory(size_t bytes);
    ~SparseMemory();
    SparseMemory(const SparseMemory&) = delete;
    SparseMemory& operator=(const SparseMemory&) = delete;

    void* Start() const { return start_; } // null where the system reserves no such size

private:
    void* start_;
    size_t bytes_;
};
} // namespace corvane::tests

#endif
