#ifndef CORVANE_RENDER_MPR_H
#define CORVANE_RENDER_MPR_H

#include "Export.h"
#include "Records.h"

// Resamples planes of a volume and of its labels. One caller at a time per object; works on the caller's thread.
// Operations return false, and leave their outputs alone, without a volume (but see Marking) and where their comment
// says so.
class CORVANE_API RenderMPR
{
public:
    RenderMPR();
    ~RenderMPR();
    RenderMPR(const RenderMPR&) = delete;
    RenderMPR& operator=(const RenderMPR&) = delete;

    // Takes a volume. The record is copied, the voxels stay the host's and must outlive their use; labels set before
    // are kept. False for a null slice table, a null slice or a size below 1; the renderer is then without a volume.
    virtual bool InitData(const KsVolumeData& volume);

    // Forgets volume and labels.
    virtual void Clear();

    // The box, in patient space, around the eight corners of GetBoundingVertexes.
    virtual bool GetBoundingBox(float* min3, float* max3);

    // The corners, in patient space, of the part of the volume that can be sampled: 1.1 voxels inside the outermost
    // voxel centres. In voxels (x, y, z), low or high: LLL HLL HHL LHL LLH HLH HHH LHH.
    virtual bool GetBoundingVertexes(float (*vertexes)[3]);

    // The renderer's own label record; its slice table is null while there are no labels.
    virtual KsVolumeMark* GetMarkData();

    // Takes labels; the record is copied, the labels stay the host's. False for a null slice table or sizes other
    // than the volume's; the renderer is then without labels.
    virtual bool SetMarkData(const KsVolumeMark& mark);

    // The smallest rectangle of a plane that covers the sampled volume.
    //   directions    six numbers: the plane's row direction, then its column direction, unit vectors
    //   center        a point of the plane, patient mm
    //   origin        receives the rectangle's first corner, patient mm
    //   rowExtent     receives its length along the row direction, mm
    //   columnExtent  receives its length along the column direction, mm
    virtual bool GetMPRSize(const double* directions, const double* center, double* origin, double& rowExtent,
                            double& columnExtent);

    // Labels on the plane image->param, nearest voxel; 0 outside, and everywhere when the volume that they belong to
    // is gone. False without labels or for an image without buffer, rows or columns. The span of pixels that it visits
    // on a row is its own and can be shorter than that of Imaging.
    virtual bool Marking(KsImageMark* image);

    // Stored values on the plane image->param, trilinear, rounded by adding 0.5 and truncating toward zero; -1024
    // outside. The outermost one to two voxel layers are not sampled. False for an image without buffer, rows or
    // columns, or a volume whose sizes differ from the stored one's (the geometry is always the stored one's).
    virtual bool Imaging(const KsVolumeData& volume, KsImageVAL* image);
    virtual bool Imaging(KsImageVAL* image);

    // Slabs are not offered by this renderer: always false, the image is left alone.
    virtual bool ImagingMIP(float thickness, KsImageVAL* image);
    virtual bool ImagingMinIP(float thickness, KsImageVAL* image);
    virtual bool ImagingAIP(float thickness, KsImageVAL* image);

private:
    struct State;
    State* state_;
};

#endif
