#ifndef CORVANE_TESTS_ENGINE3D_SEQUENCE_CALLS_H
#define CORVANE_TESTS_ENGINE3D_SEQUENCE_CALLS_H

#include "corvane/Engine3D.h"
#include "tests/core/random.h"

// Single calls with random arguments, for sequences of them.
namespace corvane::tests::calls
{
// One of thirty is a number that nobody should give.
float NumberOf(Random& random, double low, double high);

// Labels with and without tables, and such as cannot be.
int LabelOf(Random& random);

void Turn(Engine3D& engine, Random& random);
void SetPalette(Engine3D& engine, Random& random);
void EditLabels(Engine3D& engine, Random& random);
void Cut(Engine3D& engine, Random& random);

enum class PictureKind
{
    VolumeRendering,
    Endoscopy,
    Imaging,
    Projection,
};
void Draw(Engine3D& engine, Random& random, PictureKind kind);
void DrawSlab(Engine3D& engine, Random& random);
} // namespace corvane::tests::calls

#endif
