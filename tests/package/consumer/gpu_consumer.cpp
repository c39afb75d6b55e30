// Exits with 0 when the GPU library is there and says that it has no GPU.
#include <trevik/Cuda3D.h>

int main()
{
    Cuda3D renderer;
    return renderer.SupportGPU() ? 1 : 0;
}
