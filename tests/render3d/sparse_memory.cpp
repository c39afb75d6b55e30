#include "sparse_memory.h"

#if defined(_WIN32)
#include <windows.h>
#else
#include <sys/mman.h>
#endif

namespace corvane::tests
{
#if defined(_WIN32)
namespace
{
const char* reserved;
size_t reservedBytes;
void* handler;

// Gives a reserved page memory when it is first touched, and lets the touch be tried again.
LONG CALLBACK ProvidePage(EXCEPTION_POINTERS* exception)
{
    const EXCEPTION_RECORD& record = *exception->ExceptionRecord;
    if (record.ExceptionCode != DWORD(EXCEPTION_ACCESS_VIOLATION))
        return EXCEPTION_CONTINUE_SEARCH;
    char* const touched = reinterpret_cast<char*>(record.ExceptionInformation[1]);
    if (touched < reserved || touched >= reserved + reservedBytes ||
        !VirtualAlloc(touched, 1, MEM_COMMIT, PAGE_READWRITE))
        return EXCEPTION_CONTINUE_SEARCH;
    return EXCEPTION_CONTINUE_EXECUTION;
}
} // namespace

SparseMemory::SparseMemory(size_t bytes)
    : start_(VirtualAlloc(nullptr, bytes, MEM_RESERVE, PAGE_READWRITE)), bytes_(bytes)
{
    reserved = static_cast<const char*>(start_);
    reservedBytes = start_ ? bytes_ : 0;
    handler = AddVectoredExceptionHandler(1, ProvidePage);
}

SparseMemory::~SparseMemory()
{
    RemoveVectoredExceptionHandler(handler);
    if (start_)
        VirtualFree(start_, 0, MEM_RELEASE);
}
#else
SparseMemory::SparseMemory(size_t bytes)
    : start_(mmap(nullptr, bytes, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0)),
      bytes_(bytes)
{
    if (start_ == MAP_FAILED)
        start_ = nullptr;
}

SparseMemory::~SparseMemory()
{
    if (start_)
        munmap(start_, bytes_);
}
#endif
} // namespace corvane::tests
