#ifndef CORVANE_TESTS_CAPI_HOSTILE_RECORDS_H
#define CORVANE_TESTS_CAPI_HOSTILE_RECORDS_H

#include "hostile_values.h"

#include <algorithm>

// Good records, and copies of them with one field that is hostile. Images are 16 x 16 and the volume 16 x 16 x 16, so
// that one good number of elements fits all.
namespace corvane::tests
{
inline const TestVolume& GoodVolume()
{
    static const TestVolume volume = MakeVolume(16, 16, 16, [](int i, int j, int k) { return 40 * i + 9 * j - 5 * k; });
    return volume;
}

inline TestLabels& GoodLabels()
{
    static TestLabels labels = MakeLabels(16, 16, 16, [](int i, int, int) { return i % 3; });
    return labels;
}

inline PnImageParam GoodPlane() { return {16, 16, 1.25, 1, {1, 0, 0}, {0, 1, 0}, {-1, 2, 3}}; }

inline KsPalette GoodPalette()
{
    static KsPalettePoint points[] = {{0, 0x102030, 0.1f}, {300, 0x405060, 0.9f}};
    return PaletteOf(points);
}

inline VolumePalette GoodTables()
{
    static uint8_t colours[300];
    static float opacities[100] = {0.5f};
    static VolumePaletteEntry entry = {0, 99, 100, colours, opacities, 1, 1, {0.1f, 0.8f, 0}};
    VolumePalette tables = {};
    tables.entries[0] = &entry;
    tables.sumStart = 0;
    tables.sumLength = 100;
    tables.opacitySums = opacities;
    return tables;
}

inline KsMPRParam GoodFrames()
{
    return {{7, 8, 7},
            {{1, 0, 0}, {0, 1, 0}, {0, 0, 1}},
            {{1, 0, 0}, {0, 0, -1}, {0, 1, 0}},
            {{0, 1, 0}, {0, 0, -1}, {-1, 0, 0}}};
}

inline KsBlendImage GoodBlendImage()
{
    KsBlendImage image = {};
    const int32_t corners[4][2] = {{1, 1}, {9, 1}, {9, 9}, {1, 9}};
    std::copy(&corners[0][0], &corners[0][0] + 8, &image.corners[0][0]);
    image.pixels = Buffer<uint32_t>();
    image.rowDirection[0] = image.columnDirection[1] = 1;
    return image;
}

template <class Record>
struct RecordValues
{
    using Stored = Record;

    // Copies of a good record, each with one field changed.
    template <class... Changes>
    static std::vector<Record> Changed(const Record& good, const Changes&... changes)
    {
        std::vector<Record> records(sizeof...(changes), good);
        size_t n = 0;
        (changes(records[n++]), ...);
        return records;
    }
};

template <>
struct Values<const KsVolumeData*> : RecordValues<KsVolumeData>
{
    static KsVolumeData Good() { return GoodVolume().data; }
    static std::vector<KsVolumeData> Hostile()
    {
        static std::vector<const int16_t*> gap = GoodVolume().slices;
        gap[7] = nullptr;
        using V = KsVolumeData;
        return Changed(
            Good(), [](V& v) { v.slices = nullptr; }, [](V& v) { v.slices = gap.data(); }, [](V& v) { v.sizeX = 0; },
            [](V& v) { v.sizeY = -1; }, [](V& v) { v.sizeZ = 0; }, [](V& v) { v.sizeZ = INT32_MIN; },
            [](V& v) { v.sizeZ = 3; }, [](V& v) { v.sizeX = 1; }, [](V& v) { v.spacing[0] = 0; },
            [](V& v) { v.spacing[1] = -2; }, [](V& v) { v.spacing[2] = kNaN; }, [](V& v) { v.spacing[2] = 1e-38f; },
            [](V& v) { v.origin[0] = kNaN; }, [](V& v) { v.origin[1] = 3e38f; },
            [](V& v) { v.rowDirection[0] = kInfinity; }, [](V& v) { v.columnDirection[1] = 0; },
            [](V& v) { v.sliceDirection[2] = kNaN; }, [](V& v) { v.spacing[0] = 3e38f; });
    }
};

template <>
struct Values<const KsVolumeMark*> : RecordValues<KsVolumeMark>
{
    static KsVolumeMark Good() { return GoodLabels().mark; }
    static std::vector<KsVolumeMark> Hostile()
    {
        static std::vector<uint8_t*> gap = GoodLabels().slices;
        gap[3] = nullptr;
        using M = KsVolumeMark;
        return Changed(
            Good(), [](M& m) { m.slices = nullptr; }, [](M& m) { m.slices = gap.data(); }, [](M& m) { m.sizeX = 0; },
            [](M& m) { m.sizeY = 15; }, [](M& m) { m.sizeZ = 2; });
    }
};

template <>
struct Values<KsVolumeMark*> : Values<const KsVolumeMark*>
{
};

template <>
struct Values<const PnImageParam*> : RecordValues<PnImageParam>
{
    static PnImageParam Good() { return GoodPlane(); }
    static std::vector<PnImageParam> Hostile()
    {
        using P = PnImageParam;
        return Changed(
            Good(), [](P& p) { p.rows = 0; }, [](P& p) { p.rows = p.columns = UINT32_MAX; },
            [](P& p) { p.rows = p.columns = 100000; }, [](P& p) { p.rowSpacing = 0; },
            [](P& p) { p.columnSpacing = 0; }, [](P& p) { p.columnSpacing = -1; },
            [](P& p) { p.rowSpacing = double(kNaN); }, [](P& p) { p.rowSpacing = p.columnSpacing = 1e-300; },
            [](P& p) { p.columnSpacing = double(kInfinity); }, [](P& p) { p.rowDirection[0] = 0; },
            [](P& p) { p.rowDirection[2] = double(kNaN); }, [](P& p) { p.columnDirection[0] = 1; },
            [](P& p) { p.columnDirection[1] = 1e300; }, [](P& p) { p.position[0] = double(kNaN); },
            [](P& p) { p.position[1] = -1e300; }, [](P& p) { p.position[2] = double(kInfinity); });
    }
};

// Image records over a buffer of the host.
template <class Image, class Element, Element* Image::*elements>
struct ImageValues : RecordValues<Image>
{
    static Image Good()
    {
        Image image = {};
        image.*elements = Buffer<Element>();
        image.param = GoodPlane();
        return image;
    }
    static std::vector<Image> Hostile()
    {
        std::vector<Image> images(1, Good());
        images[0].*elements = nullptr;
        for (const PnImageParam& plane : Values<const PnImageParam*>::Hostile())
        {
            images.push_back(Good());
            images.back().param = plane;
        }
        return images;
    }
};

template <>
struct Values<KsImageVAL*> : ImageValues<KsImageVAL, int16_t, &KsImageVAL::values>
{
};

template <>
struct Values<PnImageRGB*> : ImageValues<PnImageRGB, uint32_t, &PnImageRGB::pixels>
{
};

template <>
struct Values<KsImageMark*> : ImageValues<KsImageMark, uint8_t, &KsImageMark::labels>
{
};

// Engine3D reads the buffer of a region, whose number of elements nothing says but its rows and columns.
template <>
struct Values<const KsImageMark*> : RecordValues<KsImageMark>
{
    static KsImageMark Good() { return Values<KsImageMark*>::Good(); }
    static std::vector<KsImageMark> Hostile()
    {
        std::vector<KsImageMark> regions;
        for (const KsImageMark& region : Values<KsImageMark*>::Hostile())
            if (uint64_t(region.param.rows) * region.param.columns <= kElements)
                regions.push_back(region);
        return regions;
    }
};

template <>
struct Values<const KsPalette*> : RecordValues<KsPalette>
{
    static KsPalette Good() { return GoodPalette(); }
    static std::vector<KsPalette> Hostile()
    {
        static KsPalettePoint wild[] = {{INT16_MAX, UINT32_MAX, kNaN}, {INT16_MIN, 1, -kInfinity}, {3, 0, 3e38f}};
        using P = KsPalette;
        return Changed(
            Good(), [](P& p) { p.points = nullptr; }, [](P& p) { p.pointCount = -5; }, [](P& p) { p.pointCount = 1; },
            [](P& p) { p = PaletteOf(wild); }, [](P& p) { p.opacity = kNaN; }, [](P& p) { p.shading[1] = -kInfinity; },
            [](P& p) { p.visible = 200; });
    }
};

template <>
struct Values<const VolumePalette*> : RecordValues<VolumePalette>
{
    static VolumePalette Good() { return GoodTables(); }
    static std::vector<VolumePalette> Hostile()
    {
        static VolumePaletteEntry empty = {0, 0, 0, nullptr, nullptr, 1, 1, {0, 0, 0}};
        using T = VolumePalette;
        return Changed(
            Good(), [](T& t) { t = {}; }, [](T& t) { t.opacitySums = nullptr; }, [](T& t) { t.entries[1] = &empty; },
            [](T& t) { t.sumLength = 0; });
    }
};

template <>
struct Values<const KsSliceParam*> : RecordValues<KsSliceParam>
{
    static KsSliceParam Good() { return {{1, 2, 3}, {1, 0, 0}, {0, 1, 0}, 10}; }
    static std::vector<KsSliceParam> Hostile()
    {
        using S = KsSliceParam;
        return Changed(
            Good(), [](S& s) { s.sideLength = 0; }, [](S& s) { s.sideLength = -1; },
            [](S& s) { s.sideLength = double(kNaN); }, [](S& s) { s.sideLength = 1e300; },
            [](S& s) { s.rowDirection[0] = 0; }, [](S& s) { s.columnDirection[2] = double(kNaN); },
            [](S& s) { s.position[0] = 1e300; });
    }
};

template <>
struct Values<const KsCamera*> : RecordValues<KsCamera>
{
    static KsCamera Good() { return {{8, 8, -5}, {0, 0, 1}, {0, 1, 0}}; }
    static std::vector<KsCamera> Hostile()
    {
        using C = KsCamera;
        return Changed(
            Good(), [](C& c) { c.center[0] = kNaN; }, [](C& c) { c.direction[2] = 0; },
            [](C& c) { c.up[2] = kInfinity; }, [](C& c) { c.up[1] = 0, c.up[2] = 1; });
    }
};

template <>
struct Values<const KsViewPoint*> : RecordValues<KsViewPoint>
{
    static KsViewPoint Good() { return {{8, 8, 8}, {0, 0, 1}, {0, 1, 0}}; }
    static std::vector<KsViewPoint> Hostile()
    {
        using V = KsViewPoint;
        return Changed(
            Good(), [](V& v) { v.eye[0] = kNaN; }, [](V& v) { v.eye[1] = 3e38f; }, [](V& v) { v.direction[2] = 0; },
            [](V& v) { v.up[2] = kInfinity; });
    }
};

template <>
struct Values<const KsMPRParam*> : RecordValues<KsMPRParam>
{
    static KsMPRParam Good() { return GoodFrames(); }
    static std::vector<KsMPRParam> Hostile()
    {
        using M = KsMPRParam;
        return Changed(
            Good(), [](M& m) { m = {}; }, [](M& m) { m.origin[0] = double(kNaN); }, [](M& m) { m.origin[1] = 1e300; },
            [](M& m) { m.coronal.normal[1] = double(kInfinity); }, [](M& m) { m.sagittal.rowDirection[2] = 1; });
    }
};

template <>
struct Values<const KsBlendImage*> : RecordValues<KsBlendImage>
{
    // Four of them: as many as are read, whatever the count says.
    using Stored = std::vector<KsBlendImage>;
    static Stored Good() { return Stored(4, GoodBlendImage()); }
    static std::vector<Stored> Hostile()
    {
        std::vector<Stored> all(4, Good());
        all[0][0].pixels = nullptr;
        all[1][0].corners[0][0] = INT32_MIN;
        all[2][0].corners[2][1] = INT32_MAX;
        all[3][0].rowDirection[0] = double(kNaN);
        return all;
    }
};

template <>
struct Values<const CorvaneView*> : RecordValues<CorvaneView>
{
    static CorvaneView Good() { return {CORVANE_FROM_LEFT, 0.1f, 0.2f, 0.3f, 1}; }
    static std::vector<CorvaneView> Hostile()
    {
        using V = CorvaneView;
        return Changed(
            Good(), [](V& v) { v.from = -1; }, [](V& v) { v.from = 6; }, [](V& v) { v.right = kNaN; },
            [](V& v) { v.up = kInfinity; }, [](V& v) { v.screen = 3e38f; }, [](V& v) { v.extent = 0; },
            [](V& v) { v.extent = kNaN; }, [](V& v) { v.extent = -1; });
    }
};

// Images that the library sizes: an empty one, and one over memory that is not the library's.
template <class Image>
struct SizedImage : RecordValues<Image>
{
    static Image Good() { return {}; }
};

template <>
struct Values<KsImageData*> : SizedImage<KsImageData>
{
    static std::vector<KsImageData> Hostile()
    {
        return Changed({}, [](KsImageData& i) { i.values = Buffer<int16_t>(), i.valueCount = 7; });
    }
};

template <>
struct Values<KsMarkData*> : SizedImage<KsMarkData>
{
    static std::vector<KsMarkData> Hostile()
    {
        return Changed({}, [](KsMarkData& i) { i.labels = Buffer<uint8_t>(), i.labelCount = 7; });
    }
};

template <>
struct Values<KsPalette*> : RecordValues<KsPalette>
{
    static KsPalette Good() { return {}; }
    static std::vector<KsPalette> Hostile()
    {
        return Changed({}, [](KsPalette& p) { p.points = GoodPalette().points, p.pointCount = 2; });
    }
};
} // namespace corvane::tests

#endif
