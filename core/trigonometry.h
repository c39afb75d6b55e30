#ifndef CORVANE_CORE_TRIGONOMETRY_H
#define CORVANE_CORE_TRIGONOMETRY_H

namespace corvane::core
{
struct SineCosine
{
    double sine, cosine;
};

// Sine and cosine of an angle in radians, to within 2e-16 of the true values for angles up to some thousand turns.
// The C library's own differ in the last bit from one system, and one processor, to the next; these do not, so
// neither do images of rotated planes. Not finite for an angle that is not.
SineCosine SineCosineOf(double angle);
} // namespace corvane::core

#endif
