#ifndef CORVANE_CAMERA_PERSPECTIVE_CAMERA_H
#define CORVANE_CAMERA_PERSPECTIVE_CAMERA_H

#include "camera.h"

namespace corvane::camera
{
// Rays from one point, the eye. Rotations turn the look-at point around the eye.
class PerspectiveCamera : public Camera
{
public:
    explicit PerspectiveCamera(double width = 1.0, double height = 1.0);

    void SetEye(core::Vec3d eye) override;                // keeps the direction; the look-at point follows, 1 mm ahead
    void SetOrigin(core::Vec3d) override {}               // the look-at point follows the eye
    bool SetSize(float, float) override { return false; } // the size is fixed at construction

    void RotateH(float angle) override;
    void RotateV(float angle) override;
    void RotateToSagittal() override;
    void RotateToCoronal() override;
    void RotateToAxial() override;
    void RotateToZ() override;
    void RotateToX() override; // to the patient's left; the orthographic camera looks the other way
    void RotateToY() override;
    void RotateToBack() override;

    // The camera's rectangle as it is: pixels are square only when the image has its shape.
    bool GetImageParams(int rows, int columns, PnImageParam& param) const override;

    // Moves eye and look-at point along the direction, backwards for a negative distance in mm. Nothing changes for 0
    // and for a distance that is not finite.
    void Step(float distance);

protected:
    // Nothing reads these: endoscopy has a view angle of its own.
    float planeDistance_ = 1.0f;
    float viewAngleDegrees_ = 90.0f;
    float aspect_ = 1.0f;

private:
    void Turn(float angle, core::Vec3d towards);
    void LookAlong(core::Vec3d direction, core::Vec3d up);
};
} // namespace corvane::camera

#endif
