#include "corvane/EngineMPR.h"

#include "plain_planes.h"
#include "random_cases.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <cstring>
#include <limits>
#include <numbers>

// The three planes of the engine: their frames, their shared point and how they turn.
namespace corvane::tests
{
namespace
{
constexpr KsMPRType kTypes[] = {KsMPRTransverse, KsMPRSagittal, KsMPRCoronal};

TestVolume MakeBlank(int sizeX, int sizeY, int sizeZ)
{
    return MakeVolume(sizeX, sizeY, sizeZ, [](int, int, int) { return 0; });
}

const KsPlaneFrame& FrameOf(const KsMPRParam& param, KsMPRType type)
{
    return type == KsMPRTransverse ? param.transverse : type == KsMPRSagittal ? param.sagittal : param.coronal;
}

KsMPRParam ParamsOf(EngineMPR& engine)
{
    KsMPRParam param;
    EXPECT_TRUE(engine.GetParams(param));
    return param;
}

// The record as the 30 numbers that cross the interface.
std::array<double, 30> NumbersOf(const KsMPRParam& param)
{
    static_assert(sizeof param == 30 * sizeof(double));
    std::array<double, 30> numbers;
    std::memcpy(numbers.data(), &param, sizeof param);
    return numbers;
}

void ExpectVector(const double* actual, double x, double y, double z, double allowed)
{
    EXPECT_NEAR(actual[0], x, allowed);
    EXPECT_NEAR(actual[1], y, allowed);
    EXPECT_NEAR(actual[2], z, allowed);
}

void ExpectFrame(const KsPlaneFrame& frame, const double (&expected)[9], double allowed)
{
    ExpectVector(frame.rowDirection, expected[0], expected[1], expected[2], allowed);
    ExpectVector(frame.columnDirection, expected[3], expected[4], expected[5], allowed);
    ExpectVector(frame.normal, expected[6], expected[7], expected[8], allowed);
}

double DotOf(const double* a, const double* b) { return a[0] * b[0] + a[1] * b[1] + a[2] * b[2]; }

// A vector turned about a unit axis, by the matrix of the rotation.
std::array<double, 3> Turned(const double* v, const double* k, double angle)
{
    const double c = std::cos(angle), s = std::sin(angle), d = 1 - c;
    return {(c + k[0] * k[0] * d) * v[0] + (k[0] * k[1] * d - k[2] * s) * v[1] + (k[0] * k[2] * d + k[1] * s) * v[2],
            (k[1] * k[0] * d + k[2] * s) * v[0] + (c + k[1] * k[1] * d) * v[1] + (k[1] * k[2] * d - k[0] * s) * v[2],
            (k[2] * k[0] * d - k[1] * s) * v[0] + (k[2] * k[1] * d + k[0] * s) * v[1] + (c + k[2] * k[2] * d) * v[2]};
}

// The standard frames after the origin, in the record's order: transverse, coronal, sagittal.
constexpr std::array<double, 27> kStandardFrames = {1, 0, 0, 0, 1, 0,  0,  0, 1, //
                                                    1, 0, 0, 0, 0, -1, 0,  1, 0, //
                                                    0, 1, 0, 0, 0, -1, -1, 0, 0};

void ExpectStandardFrames(const KsMPRParam& param)
{
    const std::array<double, 30> numbers = NumbersOf(param);
    for (size_t number = 0; number < 27; ++number)
        EXPECT_EQ(numbers[3 + number], kStandardFrames[number]) << number;
}
} // namespace

TEST(EnginePlanes, AreZeroBeforeTheFirstVolumeOrReset)
{
    EngineMPR engine;
    for (const double number : NumbersOf(ParamsOf(engine)))
        EXPECT_EQ(number, 0.0);
    double origin[3] = {1, 2, 3};
    EXPECT_TRUE(engine.GetOrigin(origin));
    ExpectVector(origin, 0, 0, 0, 0);
    for (const KsMPRType type : kTypes)
    {
        double normal[3] = {1, 2, 3};
        EXPECT_TRUE(engine.GetDirect(type, normal));
        ExpectVector(normal, 0, 0, 0, 0);
    }
}

TEST(EnginePlanes, StayZeroWhenTurnedBeforeTheFirstReset)
{
    EngineMPR engine;
    for (const KsMPRType type : kTypes)
        EXPECT_TRUE(engine.Rotate(type, 1.0f));
    for (const double number : NumbersOf(ParamsOf(engine)))
        EXPECT_EQ(number, 0.0);
}

TEST(EnginePlanes, AreTheStandardOnesAfterResetWithoutAVolume)
{
    EngineMPR engine;
    const double point[3] = {1, 2, 3};
    ASSERT_TRUE(engine.SetOrigin(point));
    EXPECT_TRUE(engine.Reset());
    ExpectStandardFrames(ParamsOf(engine));
    double normal[3], origin[3];
    ASSERT_TRUE(engine.GetDirect(KsMPRTransverse, normal));
    ExpectVector(normal, 0, 0, 1, 0);
    ASSERT_TRUE(engine.GetDirect(KsMPRSagittal, normal));
    ExpectVector(normal, -1, 0, 0, 0);
    ASSERT_TRUE(engine.GetDirect(KsMPRCoronal, normal));
    ExpectVector(normal, 0, 1, 0, 0);
    ASSERT_TRUE(engine.GetOrigin(origin)); // no box to go to the middle of
    ExpectVector(origin, 1, 2, 3, 0);
}

TEST(EnginePlanes, StandInTheMiddleOfAVolumesBox)
{
    TestVolume volume = MakeBlank(10, 12, 14);
    volume.data.spacing[0] = 2.0f;
    volume.data.origin[0] = 100.0f;
    EngineMPR engine;
    ASSERT_TRUE(engine.InitData(volume.data));
    ExpectStandardFrames(ParamsOf(engine));
    double origin[3];
    ASSERT_TRUE(engine.GetOrigin(origin));
    ExpectVector(origin, 109.0, 5.5, 6.5, 1e-5);
}

TEST(EnginePlanes, StandAtHalfTheSinglePrecisionSumOfABoxesCorners)
{
    Random random(33);
    int different = 0;
    for (int round = 0; round < 100; ++round)
    {
        TestVolume volume = MakeBlank(5, 6, 7);
        PlaceAtRandom(random, volume.data);
        const PlainGeometry geometry = PlainGeometryOf(volume.data);
        EngineMPR engine;
        ASSERT_TRUE(engine.InitData(volume.data));
        double origin[3];
        ASSERT_TRUE(engine.GetOrigin(origin));
        for (int axis = 0; axis < 3; ++axis)
        {
            const float sum = geometry.boxLow[axis] + geometry.boxHigh[axis];
            ASSERT_EQ(origin[axis], double(sum) * 0.5) << round;
            different += double(sum) != double(geometry.boxLow[axis]) + double(geometry.boxHigh[axis]);
        }
    }
    EXPECT_GT(different, 0);
}

TEST(EnginePlanes, GoBackToTheMiddleOnResetAndWithAnotherVolume)
{
    const TestVolume first = MakeBlank(10, 12, 14), second = MakeBlank(30, 20, 8);
    EngineMPR engine;
    ASSERT_TRUE(engine.InitData(first.data));
    const double away[3] = {-1000, 5, 1e9};
    for (int round = 0; round < 2; ++round)
    {
        ASSERT_TRUE(engine.SetOrigin(away));
        ASSERT_TRUE(engine.Rotate(KsMPRTransverse, 0.5f));
        ASSERT_TRUE(engine.Rotate(KsMPRCoronal, 0.25f));
        double origin[3];
        ASSERT_TRUE(engine.GetOrigin(origin));
        ExpectVector(origin, -1000, 5, 1e9, 0);
        ASSERT_TRUE(round == 0 ? engine.Reset() : engine.InitData(second.data));
        ExpectStandardFrames(ParamsOf(engine));
        ASSERT_TRUE(engine.GetOrigin(origin));
        if (round == 0)
            ExpectVector(origin, 4.5, 5.5, 6.5, 1e-5);
        else
            ExpectVector(origin, 14.5, 9.5, 3.5, 1e-5);
    }
}

TEST(EnginePlanes, AreTheStandardOnesAfterARefusedVolumeAtTheSamePoint)
{
    EngineMPR engine;
    const double point[3] = {1, 2, 3};
    ASSERT_TRUE(engine.SetOrigin(point));
    EXPECT_FALSE(engine.InitData(KsVolumeData{}));
    ExpectStandardFrames(ParamsOf(engine));
    double origin[3];
    ASSERT_TRUE(engine.GetOrigin(origin));
    ExpectVector(origin, 1, 2, 3, 0);
}

TEST(EnginePlanes, KeepTheirFramesAndPointOnClear)
{
    const TestVolume volume = MakeBlank(10, 12, 14);
    EngineMPR engine;
    ASSERT_TRUE(engine.InitData(volume.data));
    ASSERT_TRUE(engine.Rotate(KsMPRTransverse, 0.5f));
    const std::array<double, 30> before = NumbersOf(ParamsOf(engine));
    engine.Clear();
    EXPECT_EQ(NumbersOf(ParamsOf(engine)), before);
    EXPECT_TRUE(engine.Reset());
    double origin[3];
    ASSERT_TRUE(engine.GetOrigin(origin));
    ExpectVector(origin, before[0], before[1], before[2], 0);
}

TEST(EnginePlanes, AreCopiedInAndOutAsTheyAreWithTheCoronalFrameSecond)
{
    EngineMPR engine;
    double numbers[30];
    for (int number = 0; number < 30; ++number)
        numbers[number] = 1000.0 + number; // neither unit vectors nor at right angles
    numbers[29] = NAN;
    KsMPRParam param;
    std::memcpy(&param, numbers, sizeof param);
    ASSERT_TRUE(engine.SetParams(param));
    const KsMPRParam out = ParamsOf(engine);
    EXPECT_EQ(std::memcmp(&out, numbers, sizeof numbers), 0);
    double vector[3];
    ASSERT_TRUE(engine.GetOrigin(vector));
    ExpectVector(vector, 1000, 1001, 1002, 0);
    ASSERT_TRUE(engine.GetDirect(KsMPRTransverse, vector));
    ExpectVector(vector, 1009, 1010, 1011, 0);
    ASSERT_TRUE(engine.GetDirect(KsMPRCoronal, vector));
    ExpectVector(vector, 1018, 1019, 1020, 0);
    ASSERT_TRUE(engine.GetDirect(KsMPRSagittal, vector));
    EXPECT_EQ(vector[0], 1027);
    EXPECT_EQ(vector[1], 1028);
    EXPECT_TRUE(std::isnan(vector[2]));
}

TEST(EnginePlanes, TurnByARightAngleIntoEachOther)
{
    const float quarter = float(std::numbers::pi / 2); // 4e-8 beyond a right angle
    EngineMPR engine;
    engine.Reset();
    ASSERT_TRUE(engine.Rotate(KsMPRTransverse, quarter)); // about z: x becomes y, y becomes -x
    KsMPRParam param = ParamsOf(engine);
    ExpectFrame(param.transverse, {1, 0, 0, 0, 1, 0, 0, 0, 1}, 0);
    ExpectFrame(param.coronal, {0, 1, 0, 0, 0, -1, -1, 0, 0}, 1e-7);
    ExpectFrame(param.sagittal, {-1, 0, 0, 0, 0, -1, 0, -1, 0}, 1e-7);

    engine.Reset();
    ASSERT_TRUE(engine.Rotate(KsMPRSagittal, quarter)); // about -x: y becomes -z, z becomes y
    param = ParamsOf(engine);
    ExpectFrame(param.sagittal, {0, 1, 0, 0, 0, -1, -1, 0, 0}, 0);
    ExpectFrame(param.transverse, {1, 0, 0, 0, 0, -1, 0, 1, 0}, 1e-7);
    ExpectFrame(param.coronal, {1, 0, 0, 0, -1, 0, 0, 0, -1}, 1e-7);

    engine.Reset();
    ASSERT_TRUE(engine.Rotate(KsMPRCoronal, -quarter)); // about y, backwards: x becomes z, z becomes -x
    param = ParamsOf(engine);
    ExpectFrame(param.coronal, {1, 0, 0, 0, 0, -1, 0, 1, 0}, 0);
    ExpectFrame(param.transverse, {0, 0, 1, 0, 1, 0, -1, 0, 0}, 1e-7);
    ExpectFrame(param.sagittal, {0, 1, 0, 1, 0, 0, 0, 0, -1}, 1e-7);
}

TEST(EnginePlanes, TurnAboutAnyNormalAsTheRotationMatrixSays)
{
    Random random(31);
    EngineMPR engine;
    engine.Reset();
    for (int round = 0; round < 500; ++round)
    {
        const KsMPRType fixed = kTypes[random.Below(3)];
        const float angle = float(random.Real(-7, 7));
        const KsMPRParam before = ParamsOf(engine);
        ASSERT_TRUE(engine.Rotate(fixed, angle));
        const KsMPRParam after = ParamsOf(engine);
        const double* axis = FrameOf(before, fixed).normal;
        for (const KsMPRType type : kTypes)
        {
            const KsPlaneFrame &old = FrameOf(before, type), &now = FrameOf(after, type);
            if (type == fixed)
            {
                ASSERT_EQ(std::memcmp(&old, &now, sizeof old), 0);
                continue;
            }
            const double* const olds[3] = {old.rowDirection, old.columnDirection, old.normal};
            const double* const nows[3] = {now.rowDirection, now.columnDirection, now.normal};
            for (int vector = 0; vector < 3; ++vector)
            {
                const std::array<double, 3> expected = Turned(olds[vector], axis, double(angle));
                for (size_t component = 0; component < 3; ++component)
                    ASSERT_NEAR(nows[vector][component], expected[component], 2e-15) << round;
            }
        }
        ASSERT_EQ(std::memcmp(before.origin, after.origin, sizeof before.origin), 0);
    }
}

TEST(EnginePlanes, StayAtRightAnglesOverTenThousandRotations)
{
    Random random(32);
    EngineMPR engine;
    engine.Reset();
    for (int round = 0; round < 10000; ++round)
        ASSERT_TRUE(engine.Rotate(kTypes[random.Below(3)], float(random.Real(-3, 3))));
    const KsMPRParam param = ParamsOf(engine);
    for (const KsMPRType type : kTypes)
    {
        const KsPlaneFrame& frame = FrameOf(param, type);
        EXPECT_NEAR(DotOf(frame.rowDirection, frame.rowDirection), 1, 1e-15);
        EXPECT_NEAR(DotOf(frame.columnDirection, frame.columnDirection), 1, 1e-15);
        EXPECT_NEAR(DotOf(frame.normal, frame.normal), 1, 1e-15);
        EXPECT_NEAR(DotOf(frame.rowDirection, frame.columnDirection), 0, 1e-12);
        EXPECT_NEAR(DotOf(frame.rowDirection, frame.normal), 0, 1e-12);
        EXPECT_NEAR(DotOf(frame.columnDirection, frame.normal), 0, 1e-12);
    }
    EXPECT_NEAR(DotOf(param.transverse.normal, param.coronal.normal), 0, 1e-12);
    EXPECT_NEAR(DotOf(param.transverse.normal, param.sagittal.normal), 0, 1e-12);
    EXPECT_NEAR(DotOf(param.coronal.normal, param.sagittal.normal), 0, 1e-12);
}

TEST(EnginePlanes, AddUpTenThousandSmallRotations)
{
    EngineMPR engine;
    engine.Reset();
    const float angle = 0.01f;
    for (int round = 0; round < 10000; ++round)
        ASSERT_TRUE(engine.Rotate(KsMPRTransverse, angle));
    const double total = 10000.0 * double(angle);
    double normal[3];
    ASSERT_TRUE(engine.GetDirect(KsMPRCoronal, normal));
    ExpectVector(normal, -std::sin(total), std::cos(total), 0, 1e-11);
    ASSERT_TRUE(engine.GetDirect(KsMPRSagittal, normal));
    ExpectVector(normal, -std::cos(total), -std::sin(total), 0, 1e-11);
}

TEST(EnginePlanes, RefuseAnglesThatAreNotFiniteAndUnknownPlanes)
{
    EngineMPR engine;
    engine.Reset();
    ASSERT_TRUE(engine.Rotate(KsMPRSagittal, 0.3f));
    const std::array<double, 30> before = NumbersOf(ParamsOf(engine));
    const float infinity = std::numeric_limits<float>::infinity(), nan = std::numeric_limits<float>::quiet_NaN();
    for (const KsMPRType type : kTypes)
        for (const float angle : {infinity, -infinity, nan})
            EXPECT_FALSE(engine.Rotate(type, angle));
    for (const int type : {0, 4, -1, 1000000})
    {
        double normal[3] = {7, 8, 9};
        EXPECT_FALSE(engine.Rotate(KsMPRType(type), 0.5f));
        EXPECT_FALSE(engine.GetDirect(KsMPRType(type), normal));
        ExpectVector(normal, 7, 8, 9, 0);
    }
    EXPECT_EQ(NumbersOf(ParamsOf(engine)), before);
}

TEST(EnginePlanes, RefuseNullPlacesForNumbers)
{
    EngineMPR engine;
    engine.Reset();
    EXPECT_FALSE(engine.GetOrigin(nullptr));
    EXPECT_FALSE(engine.SetOrigin(nullptr));
    for (const KsMPRType type : kTypes)
        EXPECT_FALSE(engine.GetDirect(type, nullptr));
}
} // namespace corvane::tests
