#ifndef CORVANE_TESTS_FAULTS_RECORD_ARGUMENTS_H
#define CORVANE_TESTS_FAULTS_RECORD_ARGUMENTS_H

#include "arguments.h"

// Good arguments that point to records.
namespace corvane::tests
{
// Records to read.
template <class Record>
struct RecordArgument : PlainArgument
{
    explicit RecordArgument(const Record& taken) : record(taken) {}
    const Record* Get() const { return &record; }

    Record record;
};

inline PnImageParam Plane() { return {16, 16, 1.25, 1, {1, 0, 0}, {0, 1, 0}, {2, 0, 3}}; }

template <>
struct Argument<const KsVolumeData*> : RecordArgument<KsVolumeData>
{
    Argument() : RecordArgument(SecondVolume().data) {}
};

template <>
struct Argument<const KsVolumeMark*> : RecordArgument<KsVolumeMark>
{
    Argument() : RecordArgument(Labels().mark) {}
};

template <>
struct Argument<const PnImageParam*> : RecordArgument<PnImageParam>
{
    Argument() : RecordArgument(Plane()) {}
};

template <>
struct Argument<const KsSliceParam*> : RecordArgument<KsSliceParam>
{
    Argument() : RecordArgument({{1, 2, 3}, {1, 0, 0}, {0, 1, 0}, 10}) {}
};

template <>
struct Argument<const KsCamera*> : RecordArgument<KsCamera>
{
    Argument() : RecordArgument({{14, 8, -5}, {0, 0, 1}, {0, 1, 0}}) {}
};

template <>
struct Argument<const KsViewPoint*> : RecordArgument<KsViewPoint>
{
    Argument() : RecordArgument({{3, 8, 4}, {1, 0, 0}, {0, 0, 1}}) {}
};

template <>
struct Argument<const CorvaneView*> : RecordArgument<CorvaneView>
{
    Argument() : RecordArgument({CORVANE_FROM_LEFT, 0.1f, 0.2f, 0.3f, 1}) {}
};

template <>
struct Argument<const VolumePalette*> : RecordArgument<VolumePalette>
{
    Argument() : RecordArgument(Tables()) {}
};

template <>
struct Argument<const KsMPRParam*> : RecordArgument<KsMPRParam>
{
    Argument()
        : RecordArgument({{7, 8, 4},
                          {{1, 0, 0}, {0, 1, 0}, {0, 0, 1}},
                          {{1, 0, 0}, {0, 0, -1}, {0, 1, 0}},
                          {{0, 1, 0}, {0, 0, -1}, {-1, 0, 0}}})
    {
    }
};

template <>
struct Argument<const KsPalette*> : RecordArgument<KsPalette>
{
    Argument() : RecordArgument(KsPalette())
    {
        record.points = points;
        record.pointCount = 3;
        record.opacity = 0.5f;
    }

    KsPalettePoint points[3] = {{100, 0x102030, 0.1f}, {500, 0x80FF50, 0.2f}, {1200, 0x405060, 0.4f}};
};

template <>
struct Argument<const KsBlendImage*> : RecordArgument<KsBlendImage>
{
    Argument() : RecordArgument(BlendImage()) { record.position[2] = 2; }
};

template <>
struct Argument<KsBlendImage*> : Argument<const KsBlendImage*>
{
    KsBlendImage* Get() { return &record; }
};

template <>
struct Argument<const KsImageMark*> : RecordArgument<KsImageMark>
{
    Argument() : RecordArgument({nullptr, Plane()}) { record.labels = drawn.data(); }

    std::vector<uint8_t> drawn = std::vector<uint8_t>(kElements, 1);
};

// Records to write.
template <>
struct Argument<PnImageParam*> : PlainArgument
{
    PnImageParam* Get() { return &param; }
    void Append(Seen& seen) { tests::Append(seen, param); }

    PnImageParam param = {};
};

template <>
struct Argument<KsMPRParam*> : PlainArgument
{
    KsMPRParam* Get() { return &planes; }
    void Append(Seen& seen) { tests::Append(seen, planes.origin, sizeof planes / sizeof(double)); }

    KsMPRParam planes = {};
};

template <>
struct Argument<KsVolumeData*> : PlainArgument
{
    KsVolumeData* Get() { return &volume; }
    void Append(Seen& seen) { tests::Append(seen, volume.spacing, 3); }

    KsVolumeData volume = {};
};

template <>
struct Argument<KsVolumeMark*> : PlainArgument
{
    KsVolumeMark* Get() { return &labels.mark; }
    void Append(Seen& seen)
    {
        for (const std::vector<uint8_t>& slice : labels.labels)
            tests::Append(seen, slice.data(), slice.size());
    }

    TestLabels labels = MakeLabels(32, 16, 8, [](int, int, int) { return 7; });
};

template <class Image, class Element, Element* Image::*elements>
struct ImageArgument : PlainArgument
{
    ImageArgument()
    {
        image.*elements = buffer.data();
        image.param = Plane();
    }
    Image* Get() { return &image; }
    void Append(Seen& seen)
    {
        tests::Append(seen, image.param);
        tests::Append(seen, buffer.data(), buffer.size());
    }

    std::vector<Element> buffer = std::vector<Element>(kElements, Element(0x5A));
    Image image = {};
};

template <>
struct Argument<PnImageRGB*> : ImageArgument<PnImageRGB, uint32_t, &PnImageRGB::pixels>
{
};

template <>
struct Argument<KsImageVAL*> : ImageArgument<KsImageVAL, int16_t, &KsImageVAL::values>
{
};

template <>
struct Argument<KsImageMark*> : ImageArgument<KsImageMark, uint8_t, &KsImageMark::labels>
{
};

// Records with a buffer that the library frees when it sizes them.
//   Owner  the record, and what frees its buffer in the end
template <class Record, class Owner, class Element, Element* Record::*elements, uint8_t Record::*owns,
          uint32_t Record::*count>
struct SizedArgument : PlainArgument
{
    SizedArgument()
    {
        image.*elements = new Element[4]{1, 2, 3, 4};
        image.*owns = 1;
        image.*count = 4;
        image.rows = image.columns = 2;
    }
    Record* Get() { return &image; }
    void Append(Seen& seen)
    {
        seen.push_back(image.*count);
        tests::Append(seen, image.*elements, image.*count);
        tests::Append(seen, image.param);
    }

    Owner image;
};

template <>
struct Argument<KsImageData*> : SizedArgument<KsImageData, ImageData, int16_t, &KsImageData::values,
                                              &KsImageData::ownsValues, &KsImageData::valueCount>
{
};

template <>
struct Argument<KsMarkData*> : SizedArgument<KsMarkData, MarkData, uint8_t, &KsMarkData::labels,
                                             &KsMarkData::ownsLabels, &KsMarkData::labelCount>
{
};

template <>
struct Argument<KsPalette*> : PlainArgument
{
    Argument()
    {
        palette.points = new KsPalettePoint[2]{{1, 2, 0.5f}, {3, 4, 0.5f}};
        palette.ownsPoints = 1;
        palette.pointCount = 2;
    }
    ~Argument() { corvane_palette_free(&palette); }
    Argument(const Argument&) = delete;
    Argument& operator=(const Argument&) = delete;

    KsPalette* Get() { return &palette; }
    void Append(Seen& seen)
    {
        seen.push_back(palette.visible);
        tests::Append(seen, palette.shading, 3);
        seen.push_back(double(palette.opacity));
        for (int32_t n = 0; n < palette.pointCount; ++n)
        {
            const KsPalettePoint& point = palette.points[n];
            seen.insert(seen.end(), {double(point.value), double(point.colour), double(point.opacity)});
        }
    }

    KsPalette palette;
};
} // namespace corvane::tests

#endif
