#include "state.h"

#include <algorithm>
#include <cmath>

// The cameras. Each operation is the camera's own.

void Engine3D::Step(float distance)
{
    if (state_)
        state_->perspective.Step(distance);
}

// One operation with two names: what a derived class makes of the other one is not asked.
void Engine3D::StepOrigin(float distance) { Engine3D::Step(distance); }

void Engine3D::RotateScreen(float angle)
{
    if (state_)
        state_->active->RotateScreen(angle);
}

void Engine3D::RotateH(float angle)
{
    if (state_)
        state_->active->RotateH(angle);
}

void Engine3D::RotateV(float angle)
{
    if (state_)
        state_->active->RotateV(angle);
}

void Engine3D::RotateToSagittal()
{
    if (state_)
        state_->active->RotateToSagittal();
}

void Engine3D::RotateToCoronal()
{
    if (state_)
        state_->active->RotateToCoronal();
}

void Engine3D::RotateToAxial()
{
    if (state_)
        state_->active->RotateToAxial();
}

void Engine3D::RotateToZ()
{
    if (state_)
        state_->active->RotateToZ();
}

void Engine3D::RotateToX()
{
    if (state_)
        state_->active->RotateToX();
}

void Engine3D::RotateToY()
{
    if (state_)
        state_->active->RotateToY();
}

void Engine3D::RotateToBack()
{
    if (state_)
        state_->active->RotateToBack();
}

void Engine3D::Zoom(float factor)
{
    if (state_)
        state_->orthographic.Zoom(factor);
}

void Engine3D::SetViewAngle(float degrees)
{
    if (state_ && !std::isnan(degrees))
        state_->viewAngle = std::clamp(degrees, 5.0f, 175.0f);
}
