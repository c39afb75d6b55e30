#include "palettes.h"

namespace corvane::fuzz
{
namespace
{
constexpr int kLabels[] = {0, 0, 1, 17, 63, 64, -1, 0};

VolumePaletteEntry MakeEntry(Session& session)
{
    Input& input = session.input;
    VolumePaletteEntry entry = {};
    entry.rangeStart = input.Integer(-100, 90);
    entry.size = input.OneIn(8) ? input.Integer(-3, 3) : 1 + 4 * input.Byte();
    if (entry.size > 70000)
        entry.size = 70000;
    entry.rangeEnd = input.OneIn(8) ? input.Integer(-100, 90) : int32_t(uint32_t(entry.rangeStart) + entry.size - 1);
    const size_t count = size_t(std::max(entry.size, 0));
    const float opacity = input.Number(0.0f, 1.0f);
    entry.opacities = session.memory.Of<float>(count, opacity);
    entry.colours = session.memory.Of<uint8_t>(3 * count, input.Byte());
    for (size_t n = 0; n < count; n += 3)
        entry.opacities[n] = 0;
    entry.opacity = input.Number(0.0f, 1.0f);
    entry.visible = !input.OneIn(8);
    for (float& share : entry.shading)
        share = input.Number(0.0f, 1.0f);
    if (input.OneIn(16))
        entry.opacities = nullptr;
    if (input.OneIn(16))
        entry.colours = nullptr;
    return entry;
}
} // namespace

int MakeLabel(Session& session)
{
    return session.input.OneIn(8) ? session.input.Integer(0, 63) : kLabels[session.input.Below(8)];
}

KsPalette MakePalette(Session& session)
{
    Input& input = session.input;
    const int count = input.Below(8);
    const bool isWide = input.OneIn(4);
    KsPalettePoint* const points = session.memory.Of<KsPalettePoint>(size_t(count));
    for (int n = 0; n < count; ++n)
    {
        const int value = isWide ? input.Byte() * 256 + input.Byte() - 32768 : input.Byte() * 8 - 600;
        points[n] = {int16_t(value), uint32_t(input.Byte()) * 0x00f10b07u, input.Number(0.0f, 1.0f)};
    }
    KsPalette palette;
    palette.visible = input.OneIn(8) ? 0 : 1;
    palette.points = points;
    palette.pointCount = count;
    if (input.OneIn(4))
    {
        palette.opacity = input.Number(0.0f, 1.0f);
        for (float& share : palette.shading)
            share = input.Number(0.0f, 1.0f);
    }
    if (input.OneIn(16))
        palette.points = nullptr;
    if (input.OneIn(16))
        palette.pointCount = -count;
    return palette;
}

VolumePalette MakeTables(Session& session)
{
    Input& input = session.input;
    VolumePalette tables = {};
    const int count = input.Below(4);
    for (int n = 0; n < count; ++n)
        tables.entries[MakeLabel(session) & 63] = session.memory.Of<VolumePaletteEntry>(1, MakeEntry(session));
    tables.sumStart = input.Integer(-150, 40);
    tables.sumLength = std::min(input.OneIn(8) ? input.Integer(-5, 5) : 8 * input.Byte(), 70000);
    if (!input.OneIn(8))
        tables.opacitySums = session.memory.Of<float>(size_t(std::max(tables.sumLength, 0)), input.Number(0.0f, 1.0f));
    return tables;
}
} // namespace corvane::fuzz
