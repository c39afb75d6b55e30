#ifndef CORVANE_ENGINE_3D_H
#define CORVANE_ENGINE_3D_H

#include "Export.h"
#include "Records.h"

// One volume with its labels, transfer function and views: everything that a host needs for pictures in three
// dimensions. One caller at a time per object; work is spread over threads that live as long as the call.
//
// Two cameras look at the volume: an orthographic one from outside (volume rendering, projections) and a perspective
// one from inside (endoscopy). Sizes of images are given as `width` and `height` and reach the cameras as rows and
// columns in that order: an image has `width` rows of `height` pixels. Angles are radians but for the view angle of
// endoscopy, lengths mm, points and boxes in patient space.
//
// The volume's slices stay the host's and must live until Clear, the next InitData or the end of the engine; every
// other record is copied. Operations return false, and leave their outputs alone, for a null pointer and where their
// comment says so; no exception leaves them. A rendering on the CPU prints one line with its milliseconds to standard
// output.
class CORVANE_API Engine3D
{
public:
    Engine3D();
    ~Engine3D();
    Engine3D(const Engine3D&) = delete;
    Engine3D& operator=(const Engine3D&) = delete;

    // Takes a volume with labels of 0 everywhere, installs the default transfer function (made for CT in Hounsfield
    // units), aims the orthographic camera along +y with the whole volume in view and puts the perspective one into the
    // volume's centre. What was loaded before is forgotten first. False for a null slice table, a null slice, a size
    // below 1 or above 2^24 and when memory is short; the engine is then empty.
    virtual bool InitData(const KsVolumeData& volume);

    // The volume's record as it was given. False without a volume.
    virtual bool GetVolumeData(KsVolumeData& volume);

    // Forgets volume, labels, lookup tables, attached volumes and blend images. Keeps the palette record, the cameras
    // and whether the GPU is enabled.
    virtual void Clear();

    // Whether there is a GPU; whether volume rendering and endoscopy are to use it. Enabling is false, and leaves it
    // off, where there is none. The volume reaches the GPU with the next InitData or the next image.
    virtual bool SupportGPU();
    virtual bool SetGPUEnabled(bool enabled);
    virtual bool IsGPUEnabled();

    // Which camera rotations and Imaging use; parallel at first. Other values are ignored.
    virtual void SetRenderType(KsRender type);
    virtual KsRender GetRenderType();

    // The eye point of the perspective camera, patient mm. Setting it keeps the direction.
    virtual bool GetOrigin(double* origin3);
    virtual bool SetOrigin(const double* origin3);

    // Moves the perspective camera along its direction, mm.
    virtual void Step(float distance);

    // The engine's own labels, to be edited in place: bits 0 to 5 the label, bit 6 (64) cut away. Edits are seen after
    // UpdateMarkData. Null only when memory was short at construction and InitData has found none since; without a
    // volume the slice table is null.
    virtual KsVolumeMark* GetMarkData();
    virtual void UpdateMarkData();

    // The box around the part of the volume that can be sampled, and what of it is shown; see Render3D. Setting is true
    // even without a volume.
    virtual bool GetBoundingBox(float* min3, float* max3);
    virtual bool SetVisibleBox(const float* min3, const float* max3);
    virtual bool GetVisibleBox(float* min3, float* max3);

    // The transfer function of label 0. True, with nothing changed, for fewer than two points; with at least two points
    // of the same value the record is kept and the lookup tables stay. GetPalette copies the record with points of its
    // own (`if (palette.ownsPoints) delete[] palette.points;`), freeing those that the record owned.
    virtual bool SetPalette(const KsPalette& palette);
    virtual bool GetPalette(KsPalette& palette);

    // Slides the transfer functions of all visible labels along the stored values.
    virtual bool AdjustColor(int shift);

    // Ambient, diffuse and specular share, overall opacity and visibility of a label. Always true; the palette record
    // takes the values, too, even for a label without a transfer function.
    virtual bool SetShading(float ambient, float diffuse, float specular, int label);
    virtual bool SetOpacity(float opacity, int label);
    virtual bool SetVisible(bool visible, int label);

    // Rotations of the camera that the render type selects: about its viewing direction, to its right, upwards; to a
    // standard view; to the opposite view. Angles that are not finite are ignored.
    virtual void RotateScreen(float angle);
    virtual void RotateH(float angle);
    virtual void RotateV(float angle);
    virtual void RotateToSagittal();
    virtual void RotateToCoronal();
    virtual void RotateToAxial();
    virtual void RotateToZ();
    virtual void RotateToX();
    virtual void RotateToY();
    virtual void RotateToBack();

    virtual void StepOrigin(float distance); // the same as Step

    // The orthographic camera shows `factor` times what it showed after InitData: above 1 more, below 1 less. A factor
    // that is not above 0 is ignored.
    virtual void Zoom(float factor);

    // The view angle of Imaging with the perspective camera, degrees, limited to 5 to 175; 45 at first.
    virtual void SetViewAngle(float degrees);

    // Cuts away (bit 64 of the label) every voxel whose byte in the selection is not 0. False, with nothing changed,
    // for other sizes than the volume's, without a slice table and without labels.
    virtual bool CutAppend(const KsVolumeMark& selection);

    virtual bool CutSubtract(const KsVolumeMark& selection); // not offered: false
    virtual void CutClear();                                 // not offered: does nothing

    // Selects what a drawn region covers: `result` receives `value` for every voxel whose centre projects, along the
    // region's normal, onto a pixel that is not 0, unless it is cut away already or its label is hidden, and 0 for all
    // others. Nothing is cut yet. Voxels are placed with their two in-plane spacings exchanged, so a region fits
    // exactly where those are the same.
    // False, with nothing written, without a volume, for a result of other sizes or without slices, and for a region
    // without a buffer. A region without rows or columns selects nothing.
    virtual bool CutFill(const KsImageMark& region, KsVolumeMark& result, uint8_t value);

    // The geometry of an image of the orthographic camera. False for a width or height below 1.
    virtual bool GetParamsOfVR(int width, int height, PnImageParam& param);

    // Pictures into the host's buffer of width * height pixels.
    //   image        receives buffer and geometry; may be null
    //   volumeIndex  0 for the volume, 1, 2, ... for an attached one
    //   viewAngle    full opening angle, degrees
    // The flag is not used. Imaging is a volume rendering or, with the perspective camera, an endoscopy. ImagingVR
    // clears the buffer first and is false for what the renderer refuses; ImagingVE does not, and is true even then.
    virtual bool Imaging(int width, int height, uint32_t* pixels, bool unused, PnImageRGB* image, int volumeIndex);
    virtual bool ImagingVR(int width, int height, uint32_t* pixels, bool unused, PnImageRGB* image, int volumeIndex);
    virtual bool ImagingVE(int width, int height, uint32_t* pixels, float viewAngle, bool unused, PnImageRGB* image);

    // Intensity projections: the highest, the mean or the lowest stored value along each ray.
    //   by plane  a slab of `thickness` mm (at least 0.1) centred on the plane, all labels included; the image is sized
    //   by slice  the same through a square (side at least 1 mm) with pixels of the smallest voxel spacing; hidden
    //             labels are left out
    //   by size   through the whole volume as the orthographic camera sees it, hidden labels left out, into the host's
    //             buffer, which is filled with -1024 first; `image` receives buffer and geometry and may be null
    // False for what the renderer refuses; an image that could be sized is then sized and zero. See Render3D.
    virtual bool ImagingMIP(const PnImageParam& plane, float thickness, KsImageData* image);
    virtual bool ImagingMIP(KsSliceParam slice, float thickness, KsImageData* image);
    virtual bool ImagingMIP(int width, int height, int16_t* values, bool unused, KsImageVAL* image);
    virtual bool ImagingAIP(const PnImageParam& plane, float thickness, KsImageData* image);
    virtual bool ImagingAIP(KsSliceParam slice, float thickness, KsImageData* image);
    virtual bool ImagingAIP(int width, int height, int16_t* values, bool unused, KsImageVAL* image);
    virtual bool ImagingMinIP(const PnImageParam& plane, float thickness, KsImageData* image);
    virtual bool ImagingMinIP(KsSliceParam slice, float thickness, KsImageData* image);
    virtual bool ImagingMinIP(int width, int height, int16_t* values, bool unused, KsImageVAL* image);

    virtual bool GetImageParams(int width, int height, PnImageParam& param); // the same as GetParamsOfVR

    // Further volumes of the same sizes, and flat images in the volume renderings; see Render3D. What is attached
    // reaches a GPU with the volume. A null pointer or a count below 1 takes blend images away.
    virtual int AttachVolumeData(const KsVolumeData& volume);
    virtual void ClearAttachVolume();
    virtual void SetBlendImage(KsBlendImage* images, int count);

private:
    bool BuildVolumeMark(const KsVolumeData* volume);
    bool UpateVolumePalette(const KsPalette& palette, int label);
    bool BuildSliceImageVAL(KsSliceParam slice, float thickness, KsImageData* image, KsCamera& camera, KsImageVAL& val);
    bool BuildImageParamVAL(PnImageParam plane, float thickness, KsImageData* image, KsImageVAL& val);

    struct State;
    State* state_;
};

#endif
