#include "virtual_table.h"

#include "corvane/Engine3D.h"
#include "corvane/EngineMPR.h"
#include "corvane/Render3D.h"
#include "corvane/RenderMPR.h"
#include "trevik/Cuda3D.h"

#include <gtest/gtest.h>

// Hosts, and renderers that replace each other at run time, call these classes through their virtual tables: the order
// of the operations is the binary interface.
namespace corvane::tests
{
TEST(VirtualTable, OfRenderMPRKeepsItsOrder)
{
    EXPECT_EQ(TableIndex(&RenderMPR::InitData), 0);
    EXPECT_EQ(TableIndex(&RenderMPR::Clear), 1);
    EXPECT_EQ(TableIndex(&RenderMPR::GetBoundingBox), 2);
    EXPECT_EQ(TableIndex(&RenderMPR::GetBoundingVertexes), 3);
    EXPECT_EQ(TableIndex(&RenderMPR::GetMarkData), 4);
    EXPECT_EQ(TableIndex(&RenderMPR::SetMarkData), 5);
    EXPECT_EQ(TableIndex(&RenderMPR::GetMPRSize), 6);
    EXPECT_EQ(TableIndex(&RenderMPR::Marking), 7);
    EXPECT_EQ(TableIndex<bool (RenderMPR::*)(const KsVolumeData&, KsImageVAL*)>(&RenderMPR::Imaging), 8);
    EXPECT_EQ(TableIndex<bool (RenderMPR::*)(KsImageVAL*)>(&RenderMPR::Imaging), 9);
    EXPECT_EQ(TableIndex(&RenderMPR::ImagingMIP), 10);
    EXPECT_EQ(TableIndex(&RenderMPR::ImagingMinIP), 11);
    EXPECT_EQ(TableIndex(&RenderMPR::ImagingAIP), 12);
}

TEST(VirtualTable, OfEngineMPRKeepsItsOrder)
{
    using OnSlice = bool (EngineMPR::*)(KsSliceParam, float, KsImageData*);
    using OnPlane = bool (EngineMPR::*)(KsMPRType, float, KsImageData*);
    EXPECT_EQ(TableIndex(&EngineMPR::InitData), 0);
    EXPECT_EQ(TableIndex(&EngineMPR::Clear), 1);
    EXPECT_EQ(TableIndex(&EngineMPR::SetMarkData), 2);
    EXPECT_EQ(TableIndex(&EngineMPR::GetOrigin), 3);
    EXPECT_EQ(TableIndex(&EngineMPR::SetOrigin), 4);
    EXPECT_EQ(TableIndex(&EngineMPR::GetDirect), 5);
    EXPECT_EQ(TableIndex(&EngineMPR::GetParams), 6);
    EXPECT_EQ(TableIndex(&EngineMPR::SetParams), 7);
    EXPECT_EQ(TableIndex(&EngineMPR::Rotate), 8);
    EXPECT_EQ(TableIndex(&EngineMPR::Reset), 9);
    EXPECT_EQ(TableIndex(&EngineMPR::Marking), 10);
    EXPECT_EQ(TableIndex<bool (EngineMPR::*)(const PnImageParam&, KsImageData*)>(&EngineMPR::Imaging), 11);
    EXPECT_EQ(TableIndex<bool (EngineMPR::*)(KsSliceParam, KsImageData*)>(&EngineMPR::Imaging), 12);
    EXPECT_EQ(TableIndex<bool (EngineMPR::*)(KsMPRType, const KsVolumeData&, KsImageData*)>(&EngineMPR::Imaging), 13);
    EXPECT_EQ(TableIndex<bool (EngineMPR::*)(KsMPRType, KsImageData*)>(&EngineMPR::Imaging), 14);
    EXPECT_EQ(TableIndex<OnSlice>(&EngineMPR::ImagingMIP), 15);
    EXPECT_EQ(TableIndex<OnPlane>(&EngineMPR::ImagingMIP), 16);
    EXPECT_EQ(TableIndex<OnSlice>(&EngineMPR::ImagingMinIP), 17);
    EXPECT_EQ(TableIndex<OnPlane>(&EngineMPR::ImagingMinIP), 18);
    EXPECT_EQ(TableIndex<OnSlice>(&EngineMPR::ImagingAIP), 19);
    EXPECT_EQ(TableIndex<OnPlane>(&EngineMPR::ImagingAIP), 20);
    EXPECT_EQ(TableIndex(&EngineMPR::GetImageParam), 21);
    EXPECT_EQ(TableIndex(&EngineMPR::GetImageCount), 22);
}

TEST(VirtualTable, OfRender3DKeepsItsOrder)
{
    using Thick = bool (Render3D::*)(KsImageVAL*, float);
    using Slab = bool (Render3D::*)(KsCamera, float, float, KsImageVAL*);
    using View = bool (Render3D::*)(KsCamera, float, KsImageVAL*);
    using Whole = bool (Render3D::*)(KsImageVAL*);
    EXPECT_EQ(TableIndex(&Render3D::InitData), 0);
    EXPECT_EQ(TableIndex(&Render3D::Clear), 1);
    EXPECT_EQ(TableIndex(&Render3D::SetVolumeMark), 2);
    EXPECT_EQ(TableIndex(&Render3D::GetBoundingBox), 3);
    EXPECT_EQ(TableIndex(&Render3D::SetVisibleBox), 4);
    EXPECT_EQ(TableIndex(&Render3D::GetVisibleBox), 5);
    EXPECT_EQ(TableIndex<bool (Render3D::*)(PnImageRGB*, int)>(&Render3D::ImagingVR), 6);
    EXPECT_EQ(TableIndex<Thick>(&Render3D::ImagingMIP), 7);
    EXPECT_EQ(TableIndex<Slab>(&Render3D::ImagingMIP), 8);
    EXPECT_EQ(TableIndex<View>(&Render3D::ImagingMIP), 9);
    EXPECT_EQ(TableIndex<Whole>(&Render3D::ImagingMIP), 10);
    EXPECT_EQ(TableIndex<Thick>(&Render3D::ImagingAIP), 11);
    EXPECT_EQ(TableIndex<Slab>(&Render3D::ImagingAIP), 12);
    EXPECT_EQ(TableIndex<View>(&Render3D::ImagingAIP), 13);
    EXPECT_EQ(TableIndex<Whole>(&Render3D::ImagingAIP), 14);
    EXPECT_EQ(TableIndex<Thick>(&Render3D::ImagingMinIP), 15);
    EXPECT_EQ(TableIndex<Slab>(&Render3D::ImagingMinIP), 16);
    EXPECT_EQ(TableIndex<View>(&Render3D::ImagingMinIP), 17);
    EXPECT_EQ(TableIndex<Whole>(&Render3D::ImagingMinIP), 18);
    EXPECT_EQ(TableIndex(&Render3D::ImagingVE), 19);
    EXPECT_EQ(TableIndex(&Render3D::SetPalette), 20);
    EXPECT_EQ(TableIndex(&Render3D::AttachVolumeData), 21);
    EXPECT_EQ(TableIndex(&Render3D::ClearAttachVolume), 22);
    EXPECT_EQ(TableIndex(&Render3D::SetBlendImage), 23);
}

TEST(VirtualTable, OfEngine3DKeepsItsOrder)
{
    using OnPlane = bool (Engine3D::*)(const PnImageParam&, float, KsImageData*);
    using OnSlice = bool (Engine3D::*)(KsSliceParam, float, KsImageData*);
    using BySize = bool (Engine3D::*)(int, int, int16_t*, bool, KsImageVAL*);
    EXPECT_EQ(TableIndex(&Engine3D::InitData), 0);
    EXPECT_EQ(TableIndex(&Engine3D::GetVolumeData), 1);
    EXPECT_EQ(TableIndex(&Engine3D::Clear), 2);
    EXPECT_EQ(TableIndex(&Engine3D::SupportGPU), 3);
    EXPECT_EQ(TableIndex(&Engine3D::SetGPUEnabled), 4);
    EXPECT_EQ(TableIndex(&Engine3D::IsGPUEnabled), 5);
    EXPECT_EQ(TableIndex(&Engine3D::SetRenderType), 6);
    EXPECT_EQ(TableIndex(&Engine3D::GetRenderType), 7);
    EXPECT_EQ(TableIndex(&Engine3D::GetOrigin), 8);
    EXPECT_EQ(TableIndex(&Engine3D::SetOrigin), 9);
    EXPECT_EQ(TableIndex(&Engine3D::Step), 10);
    EXPECT_EQ(TableIndex(&Engine3D::GetMarkData), 11);
    EXPECT_EQ(TableIndex(&Engine3D::UpdateMarkData), 12);
    EXPECT_EQ(TableIndex(&Engine3D::GetBoundingBox), 13);
    EXPECT_EQ(TableIndex(&Engine3D::SetVisibleBox), 14);
    EXPECT_EQ(TableIndex(&Engine3D::GetVisibleBox), 15);
    EXPECT_EQ(TableIndex(&Engine3D::SetPalette), 16);
    EXPECT_EQ(TableIndex(&Engine3D::GetPalette), 17);
    EXPECT_EQ(TableIndex(&Engine3D::AdjustColor), 18);
    EXPECT_EQ(TableIndex(&Engine3D::SetShading), 19);
    EXPECT_EQ(TableIndex(&Engine3D::SetOpacity), 20);
    EXPECT_EQ(TableIndex(&Engine3D::SetVisible), 21);
    EXPECT_EQ(TableIndex(&Engine3D::RotateScreen), 22);
    EXPECT_EQ(TableIndex(&Engine3D::RotateH), 23);
    EXPECT_EQ(TableIndex(&Engine3D::RotateV), 24);
    EXPECT_EQ(TableIndex(&Engine3D::RotateToSagittal), 25);
    EXPECT_EQ(TableIndex(&Engine3D::RotateToCoronal), 26);
    EXPECT_EQ(TableIndex(&Engine3D::RotateToAxial), 27);
    EXPECT_EQ(TableIndex(&Engine3D::RotateToZ), 28);
    EXPECT_EQ(TableIndex(&Engine3D::RotateToX), 29);
    EXPECT_EQ(TableIndex(&Engine3D::RotateToY), 30);
    EXPECT_EQ(TableIndex(&Engine3D::RotateToBack), 31);
    EXPECT_EQ(TableIndex(&Engine3D::StepOrigin), 32);
    EXPECT_EQ(TableIndex(&Engine3D::Zoom), 33);
    EXPECT_EQ(TableIndex(&Engine3D::SetViewAngle), 34);
    EXPECT_EQ(TableIndex(&Engine3D::CutAppend), 35);
    EXPECT_EQ(TableIndex(&Engine3D::CutSubtract), 36);
    EXPECT_EQ(TableIndex(&Engine3D::CutClear), 37);
    EXPECT_EQ(TableIndex(&Engine3D::CutFill), 38);
    EXPECT_EQ(TableIndex(&Engine3D::GetParamsOfVR), 39);
    EXPECT_EQ(TableIndex(&Engine3D::Imaging), 40);
    EXPECT_EQ(TableIndex(&Engine3D::ImagingVR), 41);
    EXPECT_EQ(TableIndex(&Engine3D::ImagingVE), 42);
    EXPECT_EQ(TableIndex<OnPlane>(&Engine3D::ImagingMIP), 43);
    EXPECT_EQ(TableIndex<OnSlice>(&Engine3D::ImagingMIP), 44);
    EXPECT_EQ(TableIndex<BySize>(&Engine3D::ImagingMIP), 45);
    EXPECT_EQ(TableIndex<OnPlane>(&Engine3D::ImagingAIP), 46);
    EXPECT_EQ(TableIndex<OnSlice>(&Engine3D::ImagingAIP), 47);
    EXPECT_EQ(TableIndex<BySize>(&Engine3D::ImagingAIP), 48);
    EXPECT_EQ(TableIndex<OnPlane>(&Engine3D::ImagingMinIP), 49);
    EXPECT_EQ(TableIndex<OnSlice>(&Engine3D::ImagingMinIP), 50);
    EXPECT_EQ(TableIndex<BySize>(&Engine3D::ImagingMinIP), 51);
    EXPECT_EQ(TableIndex(&Engine3D::GetImageParams), 52);
    EXPECT_EQ(TableIndex(&Engine3D::AttachVolumeData), 53);
    EXPECT_EQ(TableIndex(&Engine3D::ClearAttachVolume), 54);
    EXPECT_EQ(TableIndex(&Engine3D::SetBlendImage), 55);
}

TEST(VirtualTable, OfCuda3DKeepsItsOrder)
{
    EXPECT_EQ(TableIndex(&Cuda3D::SupportGPU), 0);
    EXPECT_EQ(TableIndex(&Cuda3D::InitData), 1);
    EXPECT_EQ(TableIndex(&Cuda3D::SetPalette), 2);
    EXPECT_EQ(TableIndex(&Cuda3D::SetVolumeMark), 3);
    EXPECT_EQ(TableIndex(&Cuda3D::SetVisibleBox), 4);
    EXPECT_EQ(TableIndex(&Cuda3D::GetVisibleBox), 5); // the engine never asks
    EXPECT_EQ(TableIndex(&Cuda3D::Clear), 6);
    EXPECT_EQ(TableIndex(&Cuda3D::ImagingVR), 7);
    EXPECT_EQ(TableIndex(&Cuda3D::ImagingVE), 8);
    EXPECT_EQ(TableIndex(&Cuda3D::AttachVolumeData), 9);
    EXPECT_EQ(TableIndex(&Cuda3D::ClearAttachVolume), 10);
    EXPECT_EQ(TableIndex(&Cuda3D::SetBlendImage), 11);
}

// An object is its table's address and one pointer to what is private.
TEST(VirtualTable, StandsAtTheStartOfAnObjectOfTwoPointers)
{
    EXPECT_EQ(sizeof(RenderMPR), 2 * sizeof(void*));
    EXPECT_EQ(sizeof(EngineMPR), 2 * sizeof(void*));
    EXPECT_EQ(sizeof(Render3D), 2 * sizeof(void*));
    EXPECT_EQ(sizeof(Engine3D), 2 * sizeof(void*));
    EXPECT_EQ(sizeof(Cuda3D), 2 * sizeof(void*));
    RenderMPR one, other;
    void *oneTable, *otherTable;
    std::memcpy(&oneTable, static_cast<void*>(&one), sizeof oneTable);
    std::memcpy(&otherTable, static_cast<void*>(&other), sizeof otherTable);
    EXPECT_EQ(oneTable, otherTable);
    EXPECT_NE(oneTable, nullptr);
}

// Operations that forward to one another do so through the table, so a derived class takes part.
TEST(VirtualTable, IsUsedWhereOneOperationForwardsToAnother)
{
    class Recorder : public RenderMPR
    {
    public:
        bool Imaging(const KsVolumeData&, KsImageVAL*) override
        {
            ++calls;
            return true;
        }
        using RenderMPR::Imaging;
        int calls = 0;
    };
    Recorder recorder;
    RenderMPR& render = recorder;
    KsImageVAL image = {};
    EXPECT_TRUE(render.Imaging(&image)); // forwards to the form with a volume
    EXPECT_EQ(recorder.calls, 1);
}
} // namespace corvane::tests
