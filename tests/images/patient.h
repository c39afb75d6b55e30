#ifndef CORVANE_TESTS_IMAGES_PATIENT_H
#define CORVANE_TESTS_IMAGES_PATIENT_H

#include "tests/render3d/scenes.h"

// A small patient, made with whole numbers only so that he is the same on every machine: a body with a pattern in it, a
// skull around it, a vessel along x and an airway along z. The stack is oblique and tilted, its spacings differ.
namespace corvane::tests
{
TestVolume MakePatient();

// A second volume of the same grid: the body filled with a ramp.
TestVolume MakeSecondPatient();

// 0 the body, 1 the skull, 2 the vessel, 3 the airway, 4 what is outside; a corner is cut away, and a few voxels have
// labels above 63.
TestLabels MakePatientLabels();

// Labels of every value, all over the volume.
TestLabels MakeManyLabels();

// Tissue can be seen through, skull and vessel are shaded, airway and outside have no table.
TestPalette MakeTranslucentPalette();

// Everything from soft tissue on is opaque; each label has a colour. There is no table for what is outside.
TestPalette MakeSolidPalette();
} // namespace corvane::tests

#endif
