#ifndef CORVANE_CORVANE_H
#define CORVANE_CORVANE_H

// Everything that the library offers.

#include "Engine3D.h"
#include "EngineMPR.h"
#include "Export.h"
#include "Records.h"
#include "Render3D.h"
#include "RenderMPR.h"
#include "VolumeUtil.h"

#endif
