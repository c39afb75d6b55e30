#include "virtual_table.h"

#include "corvane/EngineMPR.h"
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

TEST(VirtualTable, OfCuda3DKeepsItsOrder)
{
    EXPECT_EQ(TableIndex(&Cuda3D::SupportGPU), 0);
    EXPECT_EQ(TableIndex(&Cuda3D::InitData), 1);
    EXPECT_EQ(TableIndex(&Cuda3D::SetPalette), 2);
    EXPECT_EQ(TableIndex(&Cuda3D::SetVolumeMark), 3);
    EXPECT_EQ(TableIndex(&Cuda3D::SetVisibleBox), 4);
    EXPECT_EQ(TableIndex(&Cuda3D::Clear), 6); // 5 is never called by the engine
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
