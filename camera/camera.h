#ifndef CORVANE_CAMERA_CAMERA_H
#define CORVANE_CAMERA_CAMERA_H

#include "core/vec3.h"
#include "corvane/Records.h"

#include <cstdint>

namespace corvane::camera
{
// The image plane of a view: where it lies in patient space, which way it looks and how large it is. Angles are
// radians. Direction, Up, AxisX and AxisY are unit vectors; the axes follow from Direction and Up.
// An angle or a size that is not finite, or a point that is not within 1e100 mm of the patient's origin along each
// axis, leaves the camera as it is.
class Camera
{
public:
    virtual ~Camera() = default;

    virtual void SetEye(core::Vec3d eye);
    virtual void SetOrigin(core::Vec3d origin);

    virtual const core::Vec3d& Origin() const { return origin_; }
    virtual const core::Vec3d& Eye() const { return eye_; }
    virtual const core::Vec3d& Direction() const { return direction_; }
    virtual const core::Vec3d& Up() const { return up_; }
    virtual void GetAxisX(double* axis) const { core::Store(axisX_, axis); }
    virtual const core::Vec3d& AxisX() const { return axisX_; }
    virtual void GetAxisY(double* axis) const { core::Store(axisY_, axis); }
    virtual const core::Vec3d& AxisY() const { return axisY_; }

    // First corner of a rectangle, on the image plane and centred at the eye, of a given size or the camera's own.
    virtual void GetImageOrigin(double width, double height, double* corner) const;
    virtual void GetImageOrigin(double* corner) const;

    // Rolls about the viewing direction.
    virtual void RotateScreen(float angle);

    // Size of the image plane in mm. False, with nothing changed, unless both are above 0 and finite.
    virtual bool SetSize(float width, float height);
    virtual bool GetSize(double& width, double& height) const;

    // Turn towards AxisX and towards Up. The axes are found anew from the old Up, so RotateV by more than a right
    // angle keeps Up on its side and reverses AxisX.
    virtual void RotateH(float angle) = 0;
    virtual void RotateV(float angle) = 0;

    virtual void RotateToSagittal() = 0;
    virtual void RotateToCoronal() = 0;
    virtual void RotateToAxial() = 0;
    virtual void RotateToZ() = 0; // the axial view
    virtual void RotateToX() = 0;
    virtual void RotateToY() = 0; // the coronal view
    virtual void RotateToBack() = 0;

    // Geometry of an image of this view. False, with nothing written, for rows or columns below 1.
    virtual bool GetImageParams(int rows, int columns, PnImageParam& param) const = 0;

protected:
    Camera() = default;
    Camera(const Camera&) = default;
    Camera& operator=(const Camera&) = default;

    // Brings distance, direction and axes in line with eye, origin and up. Where eye and origin coincide there is no
    // direction: it and the axes stay.
    void Update();

    // Geometry of an image that covers a rectangle centred at the eye.
    void WriteParams(int rows, int columns, double width, double height, PnImageParam& param) const;

    static bool IsUsable(core::Vec3d point);

    double width_ = 1.0;
    double height_ = 1.0;
    double distance_ = 1.0;                // from eye to origin
    core::Vec3d origin_ = {0.0, 0.0, 0.0}; // what is looked at
    core::Vec3d eye_ = {0.0, -1.0, 0.0};   // where from
    core::Vec3d direction_ = {0.0, 1.0, 0.0};
    core::Vec3d up_ = {0.0, 0.0, 1.0};
    core::Vec3d axisX_ = {1.0, 0.0, 0.0};  // columns grow along it
    core::Vec3d axisY_ = {0.0, 0.0, -1.0}; // rows grow along it: down on the screen
    int32_t usualImageSide_ = 512;         // pixels; nothing reads it
};
} // namespace corvane::camera

#endif
