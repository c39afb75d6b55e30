#include "bench_volume.h"

#include "host/read_volume.h"

namespace corvane::bench
{
BenchVolume::BenchVolume(const std::string& input)
    : name(input.substr(input.rfind('/') + 1)), volume(host::ReadVolume(input)), records(volume, host::Padding{})
{
    const KsVolumeData& data = records.Data();
    view = core::VolumeViewOf(data);
    core::PrepareVolumeGeometry(data, geometry);
}
} // namespace corvane::bench
