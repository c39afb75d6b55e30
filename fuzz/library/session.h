#ifndef CORVANE_FUZZ_LIBRARY_SESSION_H
#define CORVANE_FUZZ_LIBRARY_SESSION_H

#include "corvane/Records.h"
#include "input.h"
#include "limited_memory.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <deque>
#include <memory>

namespace corvane::fuzz
{
// Memory that records point to, each piece of exactly its size, until the input ends.
class Memory
{
public:
    template <class Element>
    Element* Of(size_t count, Element value = {})
    {
        void* const piece = std::malloc(count * sizeof(Element)); // not short as that of operator new is
        pieces_.emplace_back(piece, std::free);
        Element* const elements = static_cast<Element*>(piece);
        std::uninitialized_fill_n(elements, count, value);
        return elements;
    }

private:
    std::deque<std::shared_ptr<void>> pieces_;
};

// What was answered, as one number.
class Trace
{
public:
    template <class Value>
    void Add(const Value* values, size_t count)
    {
        const auto* bytes = reinterpret_cast<const uint8_t*>(values);
        for (size_t n = 0; n < count * sizeof(Value); ++n)
            hash_ = (hash_ ^ bytes[n]) * 0x100000001b3;
    }
    void Add(int64_t value) { Add(&value, 1); }
    uint64_t Value() const { return hash_; }

private:
    uint64_t hash_ = 0xcbf29ce484222325;
};

constexpr size_t kMostPixels = 4096;

// All that one sequence of calls needs.
struct Session
{
    Input input;
    uint8_t fill; // what buffers hold before they are drawn into
    Memory memory = {};
    Trace trace = {};
    KsVolumeData volume = {};          // the last one that was made
    int mostPixels = int(kMostPixels); // of an image; few once a volume has long rays
    int workLeft = 250000;             // voxels, and pixels times kPixelWork

    bool IsOver() const { return input.IsOver() || workLeft <= 0; }
};

constexpr int kPixelWork = 32;

// Stops the program when something that always holds does not.
void Require(bool holds, const char* what);

// Plays an input, most inputs once with one worker. Every eighth is played twice, with other numbers of workers and
// other bytes in the buffers before they are drawn into: the answers are the same.
void PlayInput(const uint8_t* bytes, size_t count, void (*play)(Session& session));

// A buffer to be drawn into.
template <class Pixel>
class Canvas
{
public:
    Canvas(Session& session, size_t count, bool isNull = false)
        : count_(isNull ? 0 : count), pixels_(new Pixel[isNull ? 0 : count]), isNull_(isNull)
    {
        std::memset(pixels_.get(), session.fill, count_ * sizeof(Pixel));
        session.workLeft -= int(count_) * kPixelWork;
        fill_ = session.fill;
    }

    Pixel* Pixels() const { return isNull_ ? nullptr : pixels_.get(); }

    // What an operation that may be refused has made of it.
    void Check(bool done, Trace& trace, const char* what) const
    {
        trace.Add(done);
        if (done)
            trace.Add(pixels_.get(), count_);
        else
            Require(IsUntouched(), what);
    }

    void AddTo(Trace& trace) const { trace.Add(pixels_.get(), count_); }

private:
    bool IsUntouched() const
    {
        const auto* bytes = reinterpret_cast<const uint8_t*>(pixels_.get());
        return std::all_of(bytes, bytes + count_ * sizeof(Pixel), [this](uint8_t byte) { return byte == fill_; });
    }

    size_t count_;
    std::unique_ptr<Pixel[]> pixels_;
    bool isNull_;
    uint8_t fill_ = 0;
};
} // namespace corvane::fuzz

#endif
