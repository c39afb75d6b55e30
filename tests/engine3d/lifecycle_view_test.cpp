#include "lifecycle_scene.h"
#include "tests/render3d/scratch_folder.h"

#include <array>
#include <cmath>

// The render type, the eye inside the volume, and classes derived from the engine.
namespace corvane::tests
{
namespace
{
std::array<double, 3> EyeOf(Engine3D& engine)
{
    std::array<double, 3> eye = {};
    EXPECT_TRUE(engine.GetOrigin(eye.data()));
    return eye;
}
} // namespace

TEST(EngineRenderType, TakesTwoValuesAndIgnoresAllOthers)
{
    Engine3D engine;
    EXPECT_EQ(engine.GetRenderType(), KsRenderParallel);
    for (const KsRender kept : {KsRenderParallel, KsRenderPerspective, KsRenderPerspective, KsRenderParallel})
    {
        engine.SetRenderType(kept);
        EXPECT_EQ(engine.GetRenderType(), kept);
        for (const int other : {2, -1, INT32_MAX, INT32_MIN})
        {
            engine.SetRenderType(static_cast<KsRender>(other));
            EXPECT_EQ(engine.GetRenderType(), kept);
        }
    }
}

TEST(EngineRenderType, SelectsTheCameraThatRotationsTurn)
{
    Engine3D engine;
    PnImageParam before, after;
    ASSERT_TRUE(engine.GetParamsOfVR(4, 4, before));
    engine.SetRenderType(KsRenderPerspective);
    engine.SetRenderType(static_cast<KsRender>(2)); // changes nothing
    engine.RotateToSagittal();
    ASSERT_TRUE(engine.GetParamsOfVR(4, 4, after));
    EXPECT_TRUE(SameBytes(before, after));
    engine.Step(2);
    EXPECT_EQ(EyeOf(engine)[0], -2); // looks along -x
    engine.SetRenderType(KsRenderParallel);
    engine.RotateToSagittal();
    ASSERT_TRUE(engine.GetParamsOfVR(4, 4, after));
    EXPECT_EQ(after.rowDirection[1], 1);
    engine.Step(2);
    EXPECT_EQ(EyeOf(engine)[0], -4);
}

TEST(EngineEye, MovesAlongTheDirectionWhateverTheRenderType)
{
    Engine3D engine;
    const double start[3] = {1, 2, 3};
    ASSERT_TRUE(engine.SetOrigin(start));
    for (const KsRender type : {KsRenderParallel, KsRenderPerspective})
    {
        engine.SetRenderType(type);
        ASSERT_TRUE(engine.SetOrigin(start));
        engine.Step(2.5f); // along +y, as the camera stands from the start
        EXPECT_EQ(EyeOf(engine), (std::array<double, 3>{1, 4.5, 3}));
        engine.StepOrigin(-4);
        EXPECT_EQ(EyeOf(engine), (std::array<double, 3>{1, 0.5, 3}));
    }
}

TEST(EngineEye, AStepOfNothingLeavesItExactlyWhereItWas)
{
    const ScratchFolder folder;
    const TestVolume bone = BoneVolume();
    Engine3D engine;
    ASSERT_TRUE(engine.InitData(bone.data));
    engine.SetRenderType(KsRenderPerspective);
    engine.RotateH(0.37f);
    engine.RotateV(0.21f);
    engine.Step(0.1f);
    const std::array<double, 3> eye = EyeOf(engine);
    const Pixels picture = EndoscopyPicture(engine);
    for (const float nothing : {0.0f, -0.0f, NAN, INFINITY, -INFINITY})
    {
        engine.Step(nothing);
        engine.StepOrigin(nothing);
        EXPECT_EQ(EyeOf(engine), eye);
    }
    EXPECT_EQ(EndoscopyPicture(engine), picture);
}

TEST(EngineEye, KeepsItsDirectionWhereverItIsPut)
{
    Engine3D engine;
    engine.SetRenderType(KsRenderPerspective);
    engine.RotateToAxial();
    const double place[3] = {-7, 8, 9};
    EXPECT_TRUE(engine.SetOrigin(place));
    EXPECT_EQ(EyeOf(engine), (std::array<double, 3>{-7, 8, 9}));
    engine.Step(1);
    EXPECT_NEAR(EyeOf(engine)[2], 10, 1e-12);
    EXPECT_FALSE(engine.SetOrigin(nullptr));
    EXPECT_FALSE(engine.GetOrigin(nullptr));
    EXPECT_NEAR(EyeOf(engine)[2], 10, 1e-12);
}

TEST(EngineDerived, InitDataClearsThroughTheVirtualTable)
{
    class Counting final : public Engine3D
    {
    public:
        void Clear() override
        {
            ++clears;
            KsVolumeData volume;
            heldAVolume = GetVolumeData(volume);
            Engine3D::Clear();
        }
        int clears = 0;
        bool heldAVolume = false;
    };
    const ScratchFolder folder;
    const TestVolume bone = BoneVolume();
    Counting engine;
    ASSERT_TRUE(engine.InitData(bone.data));
    EXPECT_EQ(engine.clears, 1);
    EXPECT_FALSE(engine.heldAVolume);
    ASSERT_TRUE(engine.InitData(bone.data));
    EXPECT_EQ(engine.clears, 2);
    EXPECT_TRUE(engine.heldAVolume); // the one before
    EXPECT_FALSE(engine.InitData({}));
    EXPECT_EQ(engine.clears, 3);
    EXPECT_TRUE(engine.heldAVolume);
}

TEST(EngineDerived, ImagingForwardsThroughTheVirtualTable)
{
    class Painting final : public Engine3D
    {
    public:
        bool ImagingVR(int width, int height, uint32_t*, bool flag, PnImageRGB*, int volumeIndex) override
        {
            asked = {width, height, flag, volumeIndex, 0.0f};
            return false;
        }
        bool ImagingVE(int width, int height, uint32_t*, float viewAngle, bool flag, PnImageRGB*) override
        {
            asked = {width, height, flag, -1, viewAngle};
            return false;
        }
        struct
        {
            int width, height;
            bool flag;
            int volumeIndex;
            float viewAngle;
        } asked = {};
    };
    Painting engine;
    uint32_t pixel = 0;
    EXPECT_FALSE(engine.Imaging(3, 4, &pixel, true, nullptr, 7));
    EXPECT_EQ(engine.asked.width, 3);
    EXPECT_EQ(engine.asked.height, 4);
    EXPECT_TRUE(engine.asked.flag);
    EXPECT_EQ(engine.asked.volumeIndex, 7);
    engine.SetRenderType(KsRenderPerspective);
    engine.SetViewAngle(80);
    EXPECT_FALSE(engine.Imaging(5, 6, &pixel, false, nullptr, 7));
    EXPECT_EQ(engine.asked.width, 5);
    EXPECT_EQ(engine.asked.height, 6);
    EXPECT_FALSE(engine.asked.flag);
    EXPECT_EQ(engine.asked.viewAngle, 80);
}

// Two names of one operation: a derived class that expresses one by the other does not run in circles.
TEST(EngineDerived, OperationsWithTwoNamesDoNotCallEachOther)
{
    class Renaming final : public Engine3D
    {
    public:
        void Step(float distance) override
        {
            if (++steps == 1) // comes back at most once
                StepOrigin(2 * distance);
        }
        bool GetParamsOfVR(int width, int height, PnImageParam& param) override
        {
            return ++questions == 1 && GetImageParams(2 * width, height, param);
        }
        int steps = 0, questions = 0;
    };
    Renaming engine;
    const double start[3] = {0, 0, 0};
    ASSERT_TRUE(engine.SetOrigin(start));
    engine.Step(3);
    EXPECT_EQ(EyeOf(engine)[1], 6);
    PnImageParam param;
    ASSERT_TRUE(engine.GetParamsOfVR(5, 6, param));
    EXPECT_EQ(param.rows, 10u);
}
} // namespace corvane::tests
