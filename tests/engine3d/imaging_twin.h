#ifndef CORVANE_TESTS_ENGINE3D_IMAGING_TWIN_H
#define CORVANE_TESTS_ENGINE3D_IMAGING_TWIN_H

#include "appearance_state.h"
#include "corvane/Engine3D.h"
#include "corvane/Render3D.h"
#include "navigation_planes.h"
#include "palette_plain.h"
#include "tests/render3d/scenes.h"
#include "tests/render3d/scratch_folder.h"

#include <gtest/gtest.h>

// An engine beside a renderer that is driven by hand, with volume, labels and tables of the test's own. Whatever the
// engine draws, the renderer must draw alike.
namespace corvane::tests
{
struct Twin
{
    // Renderer and engine hold the volume, no labels and the default transfer function.
    explicit Twin(TestVolume given);

    // For tables and labels of both. The engine's are changed in place and announced.
    void SetPalette(const KsPalette& palette, int label);
    void SetLabels(TestLabels given);

    // Gives the renderer the tables once more.
    void Refresh() { render.SetPalette(tables.Records()); }

    ScratchFolder folder; // new labels leave a diagnostic file behind
    TestVolume volume;
    TestLabels labels;
    PlainTables tables;
    Engine3D engine;
    Render3D render;
};

// A body with vessels and bone, as a scan's stored values, in an oblique stack of tilted slices and unequal spacings.
TestVolume MakePatient(uint32_t seed = 1);

// A transfer function for it with everything that is seen half through.
TestTransfer TissueTransfer();

// Lumps of labels 0 to 3, of ones without tables, cut away or beyond the labels.
TestLabels MakeLumps(const KsVolumeData& volume);

// Fills an engine's labels and announces them.
void SetLabelsOf(Engine3D& engine, const TestLabels& labels);

// What the engine draws into a buffer of untouched pixels, and the same by hand.
TestImage RenderingOf(Engine3D& engine, int width, int height, int volumeIndex = 0);
TestImage RenderingOf(Render3D& render, const PnImageParam& plane, int volumeIndex = 0);

// The orthographic camera's image.
PnImageParam PlaneOf(Engine3D& engine, int width, int height);
} // namespace corvane::tests

#endif
