#include "trevik/Cuda3D.h"

// No state: there is no GPU to hold anything.
Cuda3D::Cuda3D() : state_(nullptr) {}

Cuda3D::~Cuda3D() { static_cast<void>(state_); }

bool Cuda3D::SupportGPU() { return false; }

bool Cuda3D::InitData(const KsVolumeData&, const KsVolumeMark&, const VolumePalette&) { return false; }

bool Cuda3D::SetPalette(const VolumePalette&) { return false; }

void Cuda3D::SetVolumeMark(const KsVolumeMark&) {}

bool Cuda3D::SetVisibleBox(const float*, const float*) { return false; }

bool Cuda3D::GetVisibleBox(float*, float*) { return false; }

void Cuda3D::Clear() {}

bool Cuda3D::ImagingVR(PnImageRGB*, int) { return false; }

bool Cuda3D::ImagingVE(KsViewPoint, float, PnImageRGB*) { return false; }

int Cuda3D::AttachVolumeData(const KsVolumeData&) { return 0; }

void Cuda3D::ClearAttachVolume() {}

void Cuda3D::SetBlendImage(KsBlendImage*, int) {}
