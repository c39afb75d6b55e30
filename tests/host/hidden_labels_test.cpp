#include "host/hidden_labels.h"
#include "read_testing.h"

namespace corvane::host
{
namespace
{
Volume LabelledVolume()
{
    Volume volume;
    volume.grid = ObliqueGrid(9, 7, 5, 0);
    volume.labels.resize(volume.grid.VoxelCount());
    volume.labels[size_t((2 * 7 + 3) * 9 + 4)] = 5; // voxel (4, 3, 2)
    volume.labels[0] = 6;
    volume.labels.back() = 7;
    return volume;
}

TEST(HiddenLabels, AreCutAwayWithABoxOfNeighbours)
{
    const Volume before = LabelledVolume();
    for (const int margin : {0, 1, 2, 9})
    {
        Volume volume = before;
        HideLabels(volume, {5, 6}, margin);
        size_t voxel = 0;
        for (int k = 0; k < 5; ++k)
            for (int j = 0; j < 7; ++j)
                for (int i = 0; i < 9; ++i, ++voxel)
                {
                    const int five = std::max({std::abs(i - 4), std::abs(j - 3), std::abs(k - 2)});
                    const int six = std::max({i, j, k});
                    const int cut = std::min(five, six) <= margin ? 64 : 0;
                    ASSERT_EQ(volume.labels[voxel], before.labels[voxel] | cut) << margin << ": " << i << j << k;
                }
    }
}

TEST(HiddenLabels, NeedNoLabels)
{
    Volume volume = LabelledVolume();
    const std::vector<uint8_t> labels = volume.labels;
    HideLabels(volume, {}, 3);
    EXPECT_EQ(volume.labels, labels);
    volume.labels.clear();
    HideLabels(volume, {5}, 3);
    EXPECT_TRUE(volume.labels.empty());
}
} // namespace
} // namespace corvane::host
