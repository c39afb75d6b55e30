#include "core/image_plane.h"

#include "failing_allocator.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <limits>
#include <new>
#include <vector>

namespace corvane::core
{
namespace
{
constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

// Both records that the library sizes, under one name for each field.
struct Values
{
    using Record = KsImageData;
    using Sample = int16_t;
    static uint32_t& Count(Record& image) { return image.valueCount; }
    static Sample*& Buffer(Record& image) { return image.values; }
    static uint8_t& Owns(Record& image) { return image.ownsValues; }
};
struct Labels
{
    using Record = KsMarkData;
    using Sample = uint8_t;
    static uint32_t& Count(Record& image) { return image.labelCount; }
    static Sample*& Buffer(Record& image) { return image.labels; }
    static uint8_t& Owns(Record& image) { return image.ownsLabels; }
};

template <class Kind>
class ResizeImage : public testing::Test
{
protected:
    using Record = typename Kind::Record;
    using Sample = typename Kind::Sample;

    ~ResizeImage() override
    {
        if (Kind::Owns(image))
            delete[] Kind::Buffer(image);
    }

    void ExpectZeroedBuffer(uint32_t rows, uint32_t columns)
    {
        EXPECT_EQ(image.rows, rows);
        EXPECT_EQ(image.columns, columns);
        ASSERT_EQ(Kind::Count(image), rows * columns);
        EXPECT_EQ(Kind::Owns(image), 1);
        ASSERT_NE(Kind::Buffer(image), nullptr);
        EXPECT_EQ(std::count(Kind::Buffer(image), Kind::Buffer(image) + rows * columns, Sample(0)), rows * columns);
    }

    // A record is plain numbers, so its bytes are all there is to it; compared where nothing may change.
    std::vector<unsigned char> Bytes() const
    {
        std::vector<unsigned char> bytes(sizeof(Record));
        std::memcpy(bytes.data(), &image, sizeof(Record));
        return bytes;
    }

    Record image = {};
};
using Kinds = testing::Types<Values, Labels>;
class KindNames
{
public:
    template <class Kind>
    static std::string GetName(int)
    {
        return std::is_same_v<Kind, Values> ? "Values" : "Labels";
    }
};
TYPED_TEST_SUITE(ResizeImage, Kinds, KindNames);
} // namespace

TYPED_TEST(ResizeImage, GivesAnEmptyRecordAZeroedBuffer)
{
    ASSERT_TRUE(ResizeImageData(this->image, 3, 5));
    this->ExpectZeroedBuffer(3, 5);
}

TYPED_TEST(ResizeImage, ZeroesAgainAndReleasesTheBufferThatItOwns)
{
    ASSERT_TRUE(ResizeImageData(this->image, 30, 50));
    std::fill_n(TypeParam::Buffer(this->image), 1500, typename TypeParam::Sample(77));
    ASSERT_TRUE(ResizeImageData(this->image, 30, 50)); // same size: zeroed all the same
    this->ExpectZeroedBuffer(30, 50);
    ASSERT_TRUE(ResizeImageData(this->image, 7, 2));
    this->ExpectZeroedBuffer(7, 2);
    ASSERT_TRUE(ResizeImageData(this->image, 600, 400));
    this->ExpectZeroedBuffer(600, 400);
}

TYPED_TEST(ResizeImage, TakesAnyFlagThatIsSetForOwnership)
{
    for (const uint8_t flag : {0x01, 0x02, 0x80, 0xFF})
    {
        TypeParam::Buffer(this->image) = new typename TypeParam::Sample[4];
        TypeParam::Count(this->image) = 4;
        TypeParam::Owns(this->image) = flag;
        ASSERT_TRUE(ResizeImageData(this->image, 0, 3));
        EXPECT_EQ(TypeParam::Buffer(this->image), nullptr);
        EXPECT_EQ(TypeParam::Count(this->image), 0u);
        EXPECT_EQ(TypeParam::Owns(this->image), flag);
    }
}

TYPED_TEST(ResizeImage, LeavesNoBufferForASizeOfNothing)
{
    for (const auto& [rows, columns] : {std::pair(0u, 5u), std::pair(5u, 0u), std::pair(0u, 0u),
                                        std::pair(0u, 0xFFFFFFFFu), std::pair(0xFFFFFFFFu, 0u)})
    {
        ASSERT_TRUE(ResizeImageData(this->image, 2, 2));
        ASSERT_TRUE(ResizeImageData(this->image, rows, columns));
        EXPECT_EQ(TypeParam::Buffer(this->image), nullptr);
        EXPECT_EQ(TypeParam::Count(this->image), 0u);
        EXPECT_EQ(TypeParam::Owns(this->image), 1) << "the flag is left as it is";
        EXPECT_EQ(this->image.rows, rows);
        EXPECT_EQ(this->image.columns, columns);
    }
}

TYPED_TEST(ResizeImage, LeavesTheCallersMemoryUntouched)
{
    std::vector<typename TypeParam::Sample> callers(6, 42);
    TypeParam::Buffer(this->image) = callers.data();
    TypeParam::Count(this->image) = 6;
    ASSERT_TRUE(ResizeImageData(this->image, 2, 3));
    EXPECT_NE(TypeParam::Buffer(this->image), callers.data());
    this->ExpectZeroedBuffer(2, 3);
    EXPECT_EQ(callers, std::vector<typename TypeParam::Sample>(6, 42));
}

TYPED_TEST(ResizeImage, KeepsTheCallersBufferWhereNothingIsAskedFor)
{
    std::vector<typename TypeParam::Sample> callers(6, 42);
    TypeParam::Buffer(this->image) = callers.data();
    TypeParam::Count(this->image) = 6;
    ASSERT_TRUE(ResizeImageData(this->image, 0, 3));
    EXPECT_EQ(TypeParam::Buffer(this->image), callers.data());
    EXPECT_EQ(TypeParam::Count(this->image), 6u);
    EXPECT_EQ(TypeParam::Owns(this->image), 0);
    EXPECT_EQ(this->image.rows, 0u);
    EXPECT_EQ(this->image.columns, 3u);
    EXPECT_EQ(callers, std::vector<typename TypeParam::Sample>(6, 42));
}

TYPED_TEST(ResizeImage, LeavesTheGeometryAlone)
{
    const PnImageParam param = {11, 12, 0.5, 0.25, {1, 2, 3}, {4, 5, 6}, {7, 8, 9}};
    this->image.param = param;
    ASSERT_TRUE(ResizeImageData(this->image, 2, 3));
    EXPECT_EQ(std::memcmp(&this->image.param, &param, sizeof(param)), 0);
}

TYPED_TEST(ResizeImage, RefusesMorePixelsThan32BitsCountAndChangesNothing)
{
    ASSERT_TRUE(ResizeImageData(this->image, 3, 5));
    TypeParam::Buffer(this->image)[14] = 99;
    const std::vector<unsigned char> before = this->Bytes();
    // In 32 bits these products would be 0, 131073, 0 and 1.
    for (const auto& [rows, columns] : {std::pair(0x10000u, 0x10000u), std::pair(0x10001u, 0x10001u),
                                        std::pair(2u, 0x80000000u), std::pair(0xFFFFFFFFu, 0xFFFFFFFFu)})
    {
        EXPECT_FALSE(ResizeImageData(this->image, rows, columns)) << rows << " x " << columns;
        EXPECT_EQ(this->Bytes(), before);
        EXPECT_EQ(TypeParam::Buffer(this->image)[14], 99);
    }
}

TYPED_TEST(ResizeImage, AsksForMemoryUpToTheMostPixelsThat32BitsCount)
{
    tests::FailAllocationAfter(0);
    EXPECT_THROW(ResizeImageData(this->image, 0x10001u, 0xFFFFu), std::bad_alloc); // 2^32 - 1 pixels
    EXPECT_TRUE(tests::StopFailingAllocations());
}

TYPED_TEST(ResizeImage, ChangesNothingWhenThereIsNoMemory)
{
    ASSERT_TRUE(ResizeImageData(this->image, 3, 5));
    std::fill_n(TypeParam::Buffer(this->image), 15, typename TypeParam::Sample(8));
    const std::vector<unsigned char> before = this->Bytes();
    for (int allowed = 0;; ++allowed)
    {
        ASSERT_LT(allowed, 100);
        bool threw = false;
        tests::FailAllocationAfter(allowed);
        try
        {
            ResizeImageData(this->image, 40, 50);
        }
        catch (const std::bad_alloc&)
        {
            threw = true;
        }
        const bool failed = tests::StopFailingAllocations();
        ASSERT_EQ(threw, failed);
        if (!failed)
            break;
        ASSERT_EQ(this->Bytes(), before);
        ASSERT_EQ(std::count(TypeParam::Buffer(this->image), TypeParam::Buffer(this->image) + 15, 8), 15);
    }
    this->ExpectZeroedBuffer(40, 50);
}

TEST(PixelCount, IsTheQuotientRoundedUp)
{
    EXPECT_EQ(PixelCount(10, 2.5), 4u);
    EXPECT_EQ(PixelCount(10, 3), 4u);
    EXPECT_EQ(PixelCount(9.000001, 3), 4u);
    EXPECT_EQ(PixelCount(0.001, 3), 1u);
    EXPECT_EQ(PixelCount(0, 0.5), 0u);
    EXPECT_EQ(PixelCount(1, 1e-6), 1000000u);
    EXPECT_EQ(PixelCount(5, kInfinity), 0u);
}

TEST(PixelCount, GoesUpToWhat32BitsHold)
{
    EXPECT_EQ(PixelCount(4294967295.0, 1), 4294967295u);
    EXPECT_EQ(PixelCount(4294967294.5, 1), 4294967295u);
    EXPECT_EQ(PixelCount(2147483648.0, 1), 2147483648u);
    EXPECT_EQ(PixelCount(4294967295.5, 1), std::nullopt);
    EXPECT_EQ(PixelCount(4294967296.0, 1), std::nullopt);
    EXPECT_EQ(PixelCount(1e300, 1), std::nullopt);
    EXPECT_EQ(PixelCount(1, 1e-300), std::nullopt);
}

TEST(PixelCount, IsNothingForWhatIsNoCount)
{
    EXPECT_EQ(PixelCount(-1, 1), std::nullopt);
    EXPECT_EQ(PixelCount(1, -1), std::nullopt);
    EXPECT_EQ(PixelCount(1, 0), std::nullopt);
    EXPECT_EQ(PixelCount(0, 0), std::nullopt);
    EXPECT_EQ(PixelCount(kNaN, 1), std::nullopt);
    EXPECT_EQ(PixelCount(1, kNaN), std::nullopt);
    EXPECT_EQ(PixelCount(kInfinity, 1), std::nullopt);
    EXPECT_EQ(PixelCount(-kInfinity, 1), std::nullopt);
    EXPECT_EQ(PixelCount(kInfinity, kInfinity), std::nullopt);
}

TEST(CopyDoubles, CopiesAsManyAsAskedFor)
{
    const double source[4] = {1.5, kInfinity, -0.0, 4};
    for (int count = -2; count <= 4; ++count)
    {
        double target[4] = {-9, -9, -9, -9};
        CopyDoubles(source, target, count);
        for (int n = 0; n < 4; ++n)
            EXPECT_EQ(target[n], n < count ? source[n] : -9) << count;
    }
    double target = -9;
    CopyDoubles(source, &target, std::numeric_limits<int>::min());
    EXPECT_EQ(target, -9);
    CopyDoubles(nullptr, nullptr, 0);
}
} // namespace corvane::core
