#ifndef CORVANE_RENDER_3D_H
#define CORVANE_RENDER_3D_H

#include "Export.h"
#include "Records.h"

// The CPU renderer of a volume in three dimensions. One caller at a time per object; work is spread over threads that
// live as long as the call. Records are copied shallowly: voxels, label slices, palette entries and tables stay the
// host's and must outlive their use. Operations return false, and leave their outputs alone, without a volume and
// where their comment says so. A successful rendering prints one line with its milliseconds to standard output.
class CORVANE_API Render3D
{
public:
    Render3D();
    ~Render3D();
    Render3D(const Render3D& other);            // both stay valid and independent; voxels, labels and tables are shared
    Render3D& operator=(const Render3D& other); // the same

    // Takes a volume with its labels and lookup tables and prepares it for rendering. False for a null slice table, a
    // null slice, a size below 1 or above 2^24, slices of 2^31 voxels or more, and when memory is short; the renderer
    // is then empty. Labels without a slice table
    // are 0 everywhere.
    virtual bool InitData(const KsVolumeData& volume, const KsVolumeMark& mark, const VolumePalette& palette);

    // Forgets volume, labels, tables, attached volumes and blend images.
    virtual void Clear();

    // Takes labels, for attached volumes, too. Also writes the first four labels of every slice to the diagnostic file
    // "D:\mark.data"; where that cannot be opened nothing is said.
    virtual void SetVolumeMark(const KsVolumeMark& mark);

    // The box, in patient space, around the part of the volume that can be sampled.
    virtual bool GetBoundingBox(float* const min3, float* const max3);

    // What of the main volume is shown: a box in patient space given by two opposite corners. After InitData it is the
    // bounding box widened by 0.1 mm.
    virtual bool SetVisibleBox(const float* const a3, const float* const b3);
    virtual bool GetVisibleBox(float* const min3, float* const max3);

    // A shaded volume rendering along parallel rays perpendicular to image->param, of the main volume (0) or an
    // attached one (1, 2, ...; any other number is the main one). Only pixels that the visible part of the volume or a
    // blend image can cover are written. False for a null image or buffer.
    virtual bool ImagingVR(PnImageRGB* image, int volumeIndex);

    // Intensity projections along parallel rays perpendicular to an image plane, of the main volume: the highest, the
    // mean or the lowest stored value of a ray's samples inside the visible box; -1024 for a ray without samples, which
    // is also the least that the highest and the mean can be. Voxels of labels that the tables hide are left out,
    // except by the form of image and thickness, which shows them all.
    //   image      its own geometry is used, or with a camera written: centred on the camera's centre
    //   thickness  how far rays go from the plane, mm; without it through the whole volume
    //   fieldSize  what the shorter side of the image shows, mm
    // False for an image without buffer, rows or columns, a thickness below 0.1 or a field size below 1.
    virtual bool ImagingMIP(KsImageVAL* image, float thickness);
    virtual bool ImagingMIP(KsCamera camera, float fieldSize, float thickness, KsImageVAL* image);
    virtual bool ImagingMIP(KsCamera camera, float fieldSize, KsImageVAL* image);
    virtual bool ImagingMIP(KsImageVAL* image);
    virtual bool ImagingAIP(KsImageVAL* image, float thickness);
    virtual bool ImagingAIP(KsCamera camera, float fieldSize, float thickness, KsImageVAL* image);
    virtual bool ImagingAIP(KsCamera camera, float fieldSize, KsImageVAL* image);
    virtual bool ImagingAIP(KsImageVAL* image);
    virtual bool ImagingMinIP(KsImageVAL* image, float thickness);
    virtual bool ImagingMinIP(KsCamera camera, float fieldSize, float thickness, KsImageVAL* image);
    virtual bool ImagingMinIP(KsCamera camera, float fieldSize, KsImageVAL* image);
    virtual bool ImagingMinIP(KsImageVAL* image);

    // A perspective rendering of the main volume from an eye point. The image's size is given by its rows and columns,
    // its geometry is written. False for an image without buffer, rows or columns.
    //   fieldOfView  full vertical opening angle in degrees, limited to 5 to 175
    virtual bool ImagingVE(KsViewPoint view, float fieldOfView, PnImageRGB* image);

    // Takes new lookup tables, for attached volumes, too. True even without a volume.
    virtual bool SetPalette(const VolumePalette& palette);

    // Attaches another volume of the main volume's sizes; it shares labels and tables. Returns how many are attached,
    // or 0 when it is refused: no main volume, a null slice table or slice, other sizes, no memory.
    virtual int AttachVolumeData(const KsVolumeData& volume);
    virtual void ClearAttachVolume();

    // Images that volume renderings show as opaque planes; a count of 0 or below takes them away, from more than 4 the
    // first 4 are used. The records are copied, their pixels are not.
    virtual void SetBlendImage(KsBlendImage* images, int count);

private:
    bool SetVolumeData(const KsVolumeData& volume);
    bool ImagingVR(KsCamera camera, float fieldSize, PnImageRGB* image);

    struct State;
    State* state_;
};

#endif
