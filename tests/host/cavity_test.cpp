#include "host/cavity.h"

#include "host/phantom.h"

#include <gtest/gtest.h>

namespace corvane::host
{
namespace
{
// A body of soft tissue in air, 60 x 60 x 40 voxels of 2 mm, with its middle at the patient's origin.
template <class Value>
Volume BodyWith(const Value& value)
{
    Volume volume;
    volume.modality = "CT";
    volume.grid = {60, 60, 40, {2, 2, 2}, {-59, -59, -39}, {1, 0, 0}, {0, 1, 0}, {0, 0, 1}};
    for (int k = 0; k < 40; ++k)
        for (int j = 0; j < 60; ++j)
            for (int i = 0; i < 60; ++i)
                volume.voxels.push_back(int16_t(value(IndexToPatient(volume.grid, {double(i), double(j), double(k)}))));
    return volume;
}

bool InBody(Vec3 p) { return p.x * p.x + p.y * p.y < 50 * 50; }

TEST(ViewInsideCavity, StandsInARoundCavity)
{
    const Vec3 centre = {11, -9, 5};
    const Volume volume = BodyWith([&](Vec3 p) { return Length(p - centre) < 14 ? -1000 : InBody(p) ? 40 : -1000; });
    const InsideView view = ViewInsideCavity(volume);
    EXPECT_LT(Length(view.eye - centre), 14 - 8 + 2.0); // with 8 mm of room, to a voxel
}

TEST(ViewInsideCavity, LooksAlongATube)
{
    const Volume volume = BodyWith(
        [](Vec3 p)
        {
            const bool inTube = p.x * p.x + (p.y - 10) * (p.y - 10) < 10 * 10 && p.z > -30 && p.z < 30;
            return inTube ? -1000 : InBody(p) ? 40 : -1000;
        });
    const InsideView view = ViewInsideCavity(volume);
    EXPECT_LT(std::hypot(view.eye.x, view.eye.y - 10), 4.0);
    EXPECT_GT(std::abs(view.direction.z), 0.99);
}

TEST(ViewInsideCavity, DoesNotTakeATablesShellForABody)
{
    const Volume volume = BodyWith(
        [](Vec3 p)
        {
            const bool inShell = std::abs(p.x) < 50 && p.y > 30 && p.y < 56;
            const bool inside = std::abs(p.x) < 48 && p.y > 32 && p.y < 54;
            return inShell ? (inside ? -1000 : 40) : Length(p - Vec3{0, -20, 0}) < 30 ? 40 : -1000;
        });
    const InsideView view = ViewInsideCavity(volume);
    EXPECT_LT(Length(view.direction - Unit({1, 1, -1})), 1e-9) << "there is no cavity: the view from outside";
}

TEST(ViewInsideCavity, LooksAtVolumesWithoutHounsfieldUnitsFromOutside)
{
    Volume volume = BodyWith([](Vec3 p) { return InBody(p) ? 300 : 20; });
    volume.modality = "MR";
    const InsideView view = ViewInsideCavity(volume);
    EXPECT_LT(Length(view.direction - Unit({1, 1, -1})), 1e-9);
    const Vec3 index = PatientToIndex(volume.grid, view.eye);
    EXPECT_TRUE(index.x > 0 && index.y > 0 && index.z > 0 && index.x < 59 && index.y < 59 && index.z < 39);
}

TEST(ViewInsideCavity, FindsAirInsideThePhantom)
{
    const Volume volume = MakePhantom("phantom:size=96x96x80,spacing=3.2x3.2x4");
    const Vec3 index = PatientToIndex(volume.grid, ViewInsideCavity(volume).eye);
    const auto at = [](double coordinate) { return size_t(coordinate + 0.5); };
    EXPECT_LT(volume.voxels[(at(index.z) * 96 + at(index.y)) * 96 + at(index.x)], -900);
}
} // namespace
} // namespace corvane::host
