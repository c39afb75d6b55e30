#ifndef CORVANE_FUZZ_LIBRARY_SIZED_IMAGE_H
#define CORVANE_FUZZ_LIBRARY_SIZED_IMAGE_H

#include "session.h"

namespace corvane::fuzz
{
// An image that the library sizes, sometimes over memory of the host's.
class SizedImage
{
public:
    explicit SizedImage(Session& session) : session_(session)
    {
        if (session.input.OneIn(8))
            image_.values = session.memory.Of<int16_t>(7), image_.valueCount = 7;
    }
    ~SizedImage()
    {
        if (image_.ownsValues)
            delete[] image_.values;
    }
    SizedImage(const SizedImage&) = delete;
    SizedImage& operator=(const SizedImage&) = delete;

    KsImageData* Record() { return session_.input.OneIn(32) ? nullptr : &image_; }

    void Trace(bool done)
    {
        session_.trace.Add(done);
        session_.workLeft -= int(image_.valueCount);
        if (done)
            session_.trace.Add(image_.values, size_t(image_.rows) * image_.columns);
    }

private:
    Session& session_;
    KsImageData image_ = {};
};
} // namespace corvane::fuzz

#endif
