#include "c_arguments.h"

namespace corvane::fuzz
{
size_t MakeCapacity(CSession& session)
{
    constexpr size_t kCapacities[] = {kMostPixels, 0, 1, 64, 1024, 3, 5};
    const int choice = session.input.Below(16);
    if (session.mostPixels < int(kMostPixels))
        return size_t(session.mostPixels);
    if (choice < 7)
        return kCapacities[choice];
    const KsVolumeData& volume = session.volume;
    const bool isLoadable = volume.sizeX >= 1 && volume.sizeY >= 1 && volume.sizeZ >= 1;
    const size_t voxels = isLoadable ? size_t(volume.sizeX) * size_t(volume.sizeY) * size_t(volume.sizeZ) : 0;
    return choice < 12 && voxels <= size_t(kMostVoxels) ? voxels : kMostPixels;
}

KsVolumeData MakeCVolume(CSession& session)
{
    return session.volume.slices && session.input.OneIn(4) ? MakeVolumeLike(session)
                                                           : MakeVolume(session, Slices::Sampled);
}

KsVolumeMark MakeCLabels(CSession& session) { return MakeLabels(session); }
VolumePalette MakeCTables(CSession& session) { return MakeTables(session); }
KsPalette MakeCPalette(CSession& session) { return MakePalette(session); }

PnImageParam MakeCPlane(CSession& session)
{
    const Size size = MakeSizeToRefuse(session);
    session.workLeft -= int(size.Pixels()) * kPixelWork;
    return MakePlane(session, size);
}

KsSliceParam MakeCSlice(CSession& session) { return MakeSlice(session); }
KsCamera MakeCCamera(CSession& session) { return MakeCamera(session); }
KsViewPoint MakeCView(CSession& session) { return MakeView(session); }
KsMPRParam MakeCFrames(CSession& session) { return MakeFrames(session); }

CorvaneView MakeCSceneView(CSession& session)
{
    Input& input = session.input;
    const int32_t from = input.Integer(0, 5);
    const float right = input.Number(-3, 3), up = input.Number(-3, 3), screen = input.Number(-3, 3);
    return {from, right, up, screen, input.Number(0.2f, 2)};
}
} // namespace corvane::fuzz
