// Uses every record and every virtual table of the interface once, so that a compiler lays them out.
#include "corvane/Corvane.h"
#include "trevik/Cuda3D.h"

template <class... Records>
unsigned long long Sizes()
{
    return (sizeof(Records) + ...);
}

unsigned long long Probe(Engine3D& engine, EngineMPR& engineMPR, Render3D& render, RenderMPR& renderMPR, Cuda3D& gpu)
{
    engine.Clear();
    engineMPR.Clear();
    render.Clear();
    renderMPR.Clear();
    gpu.Clear();
    return Sizes<KsVolumeData, KsVolumeMark, PnImageParam, PnImageRGB, KsImageVAL, KsImageMark, KsImageData, KsMarkData,
                 KsPalettePoint, KsPalette, VolumePaletteEntry, VolumePalette, KsViewPoint, KsCamera, KsSliceParam,
                 KsBlendImage, KsPlaneFrame, KsMPRParam, KsRender, KsMPRType, Engine3D, EngineMPR, Render3D, RenderMPR,
                 VolumeUtil, Cuda3D>();
}
