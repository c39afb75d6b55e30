#ifndef CORVANE_CAMERA_ORTHOGRAPHIC_CAMERA_H
#define CORVANE_CAMERA_ORTHOGRAPHIC_CAMERA_H

#include "camera.h"

namespace corvane::camera
{
// Parallel rays from a rectangle centred at the eye. Rotations carry the eye around the origin.
class OrthographicCamera : public Camera
{
public:
    bool SetSize(float width, float height) override;

    void RotateH(float angle) override;
    void RotateV(float angle) override;
    void RotateToSagittal() override;
    void RotateToCoronal() override;
    void RotateToAxial() override;
    void RotateToZ() override;
    void RotateToX() override; // from the patient's left; the perspective camera looks the other way
    void RotateToY() override;
    void RotateToBack() override;

    // The camera's rectangle, widened to the shape of the image: pixels are square.
    bool GetImageParams(int rows, int columns, PnImageParam& param) const override;

    // Makes the rectangle `factor` times the size last given to SetSize: above 1 shows more. The rectangle stays when
    // the new one would not have a size above 0 that single precision holds.
    void Zoom(float factor);

protected:
    float zoom_ = 1.0f;
    double baseWidth_ = 1.0; // as last given to SetSize
    double baseHeight_ = 1.0;

private:
    void Orbit(float angle, core::Vec3d towards);
    void LookAlong(core::Vec3d direction, core::Vec3d up);
};
} // namespace corvane::camera

#endif
