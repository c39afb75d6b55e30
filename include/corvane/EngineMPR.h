#ifndef CORVANE_ENGINE_MPR_H
#define CORVANE_ENGINE_MPR_H

#include "Export.h"
#include "Records.h"

// Three perpendicular, rotatable planes through one point of a volume, and their images. One caller at a time per
// object. Images and their geometry are false without a volume, every operation for an unknown plane and a null
// pointer, and where its comment says so. Images are sized to cover the volume, with square pixels as large as the
// smallest voxel spacing.
class CORVANE_API EngineMPR
{
public:
    EngineMPR();
    ~EngineMPR();
    EngineMPR(const EngineMPR&) = delete;
    EngineMPR& operator=(const EngineMPR&) = delete;

    // Takes a volume and puts the standard planes through its centre. The record is copied, the voxels stay the
    // host's. False for a null slice table, a null slice or a size below 1; the engine is then without a volume.
    virtual bool InitData(const KsVolumeData& volume);
    virtual void Clear();

    // Takes labels of the volume's sizes; see RenderMPR::SetMarkData.
    virtual bool SetMarkData(const KsVolumeMark& mark);

    // The point that the planes share, patient mm. All zero before the first InitData.
    virtual bool GetOrigin(double* origin);
    virtual bool SetOrigin(const double* origin);

    // The normal of a plane.
    virtual bool GetDirect(KsMPRType type, double* normal);

    // Origin and frames as they are; neither normalised nor checked on the way in.
    virtual bool GetParams(KsMPRParam& param);
    virtual bool SetParams(const KsMPRParam& param);

    // Turns the two other planes about the normal of plane `type` by an angle in radians. False for an angle that is
    // not finite.
    virtual bool Rotate(KsMPRType type, float angle);

    // The standard planes again, through the centre of the volume where there is one. Always true.
    virtual bool Reset();

    // Labels on a plane; see RenderMPR::Marking.
    virtual bool Marking(KsMPRType type, KsMarkData* image);

    // Stored values on a caller-given plane, on a square slice with pixels of the smallest voxel spacing, and on one
    // of the three planes (from another volume of the same sizes, or from the stored one). False for an image that
    // cannot be sized: a side of no pixel, or more than 2^32 - 1 pixels.
    virtual bool Imaging(const PnImageParam& param, KsImageData* image);
    virtual bool Imaging(KsSliceParam slice, KsImageData* image);
    virtual bool Imaging(KsMPRType type, const KsVolumeData& volume, KsImageData* image);
    virtual bool Imaging(KsMPRType type, KsImageData* image);

    // Slabs are not offered by the renderer: the image is sized and zeroed, the result is false.
    virtual bool ImagingMIP(KsSliceParam slice, float thickness, KsImageData* image);
    virtual bool ImagingMIP(KsMPRType type, float thickness, KsImageData* image);
    virtual bool ImagingMinIP(KsSliceParam slice, float thickness, KsImageData* image);
    virtual bool ImagingMinIP(KsMPRType type, float thickness, KsImageData* image);
    virtual bool ImagingAIP(KsSliceParam slice, float thickness, KsImageData* image);
    virtual bool ImagingAIP(KsMPRType type, float thickness, KsImageData* image);

    // The geometry of a plane's image.
    virtual bool GetImageParam(KsMPRType type, PnImageParam& param);

    // How many parallel slices, `spacing` mm apart, fit through the volume along a plane's normal; 0 for a spacing
    // below 0.01, without a volume or for an unknown plane; may be negative.
    //   param  receives the geometry of the first slice when the count is at least 1; may be null
    virtual int GetImageCount(KsMPRType type, float spacing, PnImageParam* param);

private:
    void ResetScreen();
    bool CreateImageVAL(KsMPRType type, KsImageData* image, KsImageVAL& val);

    struct State;
    State* state_;
};

#endif
