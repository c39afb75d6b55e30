#ifndef TREVIK_CUDA3D_H
#define TREVIK_CUDA3D_H

// The seam between the 3D engine and a GPU renderer. The engine links the constructor and the destructor by name and
// calls everything else through the virtual table, so the order below is the binary interface and the library that
// supplies the class can be replaced without building the engine again.

#include "../corvane/Records.h"

#if defined(_WIN32)
#if defined(TREVIK_BUILDING)
#define TREVIK_API __declspec(dllexport)
#else
#define TREVIK_API __declspec(dllimport)
#endif
#else
#define TREVIK_API __attribute__((visibility("default")))
#endif

// A GPU renderer of one volume. This one has no GPU: SupportGPU answers false and every other operation refuses.
// Records are borrowed for the call; the voxels, labels and tables that they name outlive the renderer's use of them.
class TREVIK_API Cuda3D
{
public:
    Cuda3D();
    ~Cuda3D();
    Cuda3D(const Cuda3D&) = delete;
    Cuda3D& operator=(const Cuda3D&) = delete;

    virtual bool SupportGPU(); // a usable GPU is present

    // Uploads a volume with its labels and lookup tables; true when the GPU holds it.
    virtual bool InitData(const KsVolumeData& volume, const KsVolumeMark& mark, const VolumePalette& palette);
    virtual bool SetPalette(const VolumePalette& palette);
    virtual void SetVolumeMark(const KsVolumeMark& mark);
    virtual bool SetVisibleBox(const float* min3, const float* max3); // corners in patient mm
    virtual bool GetVisibleBox(float* min3, float* max3);             // the engine never asks
    virtual void Clear();

    // A volume rendering of the main volume (0) or of an attached one (1, 2, ...) into the image's buffer.
    virtual bool ImagingVR(PnImageRGB* image, int volumeIndex);

    // A virtual endoscopy; the angle of view in degrees.
    virtual bool ImagingVE(KsViewPoint view, float viewAngle, PnImageRGB* image);
    virtual int AttachVolumeData(const KsVolumeData& volume); // the volume's index, 0 when refused
    virtual void ClearAttachVolume();
    virtual void SetBlendImage(KsBlendImage* images, int count);

private:
    struct State;
    State* state_;
};

#endif
