#include "imaging_twin.h"

#include <cmath>
#include <functional>
#include <string>

// Standard views, as a reader of pictures knows them: which side of the patient is where.
namespace corvane::tests
{
namespace
{
constexpr int kSide = 41, kMiddle = 20;

struct Marker
{
    char side; // of the patient
    int place[3];
    uint32_t colour;
};

// In a patient lying along the axes: x to the left, y to posterior, z to superior.
constexpr Marker kMarkers[] = {
    {'L', {32, 20, 20}, 0xFF0000}, {'R', {8, 20, 20}, 0x00FF00},  {'P', {20, 32, 20}, 0x0000FF},
    {'A', {20, 8, 20}, 0xFFFF00},  {'S', {20, 20, 32}, 0xFF00FF}, {'I', {20, 20, 8}, 0x00FFFF},
};

int MarkerAt(int i, int j, int k)
{
    for (int marker = 0; marker < 6; ++marker)
    {
        const int* const place = kMarkers[marker].place;
        if (std::abs(i - place[0]) <= 3 && std::abs(j - place[1]) <= 3 && std::abs(k - place[2]) <= 3)
            return marker + 1;
    }
    return 0;
}

// Six blocks, each a label of its own colour, around an empty middle.
struct Patient
{
    Patient()
        : volume(MakeVolume(kSide, kSide, kSide, [](int i, int j, int k) { return MarkerAt(i, j, k) ? 1000 : 0; }))
    {
        EXPECT_TRUE(engine.InitData(volume.data));
        SetLabelsOf(engine, MakeLabels(kSide, kSide, kSide, MarkerAt));
        for (int marker = 0; marker < 6; ++marker)
        {
            TestTransfer transfer({{400, kMarkers[marker].colour, 1}, {2000, kMarkers[marker].colour, 1}});
            transfer.palette.shading[0] = 1; // flat
            transfer.palette.shading[1] = 0;
            SetPaletteOf(engine, transfer.palette, marker + 1);
        }
    }

    ScratchFolder folder;
    TestVolume volume;
    Engine3D engine;
};

char SideAt(const std::vector<uint32_t>& pixels, int side, int row, int column)
{
    const uint32_t pixel = pixels[size_t(row * side + column)];
    if ((pixel & 0xFF) < 200)
        return '.';
    const bool red = (pixel >> 8 & 0xFF) > 127, green = (pixel >> 16 & 0xFF) > 127, blue = (pixel >> 24) > 127;
    for (const Marker& marker : kMarkers)
        if (red == (marker.colour >> 16 > 127) && green == ((marker.colour >> 8 & 0xFF) > 127) &&
            blue == ((marker.colour & 0xFF) > 127))
            return marker.side;
    return '?';
}

// What is seen at the top, left, middle, right and bottom of a picture whose markers are `reach` pixels out.
std::string SidesOf(const std::vector<uint32_t>& pixels, int side, int reach)
{
    const int middle = side / 2;
    return {SideAt(pixels, side, middle - reach, middle), SideAt(pixels, side, middle, middle - reach),
            SideAt(pixels, side, middle, middle), SideAt(pixels, side, middle, middle + reach),
            SideAt(pixels, side, middle + reach, middle)};
}

constexpr int kPixels = 131;

// The diagonal, 65.5 mm, fills the picture, so 12 mm are 24 pixels.
std::string SeenFromOutside(Engine3D& engine)
{
    std::vector<uint32_t> pixels(kPixels * kPixels);
    EXPECT_TRUE(engine.Imaging(kPixels, kPixels, pixels.data(), false, nullptr, 0));
    return SidesOf(pixels, kPixels, 24);
}

// From 40 mm before the middle, so that 12 mm at the middle's depth fill half of the 60 degrees, and a little more.
std::string SeenFromInside(Engine3D& engine)
{
    const double middle[3] = {kMiddle, kMiddle, kMiddle};
    EXPECT_TRUE(engine.SetOrigin(middle));
    engine.Step(-40);
    engine.SetViewAngle(60);
    std::vector<uint32_t> pixels(kPixels * kPixels, kUntouched);
    EXPECT_TRUE(engine.Imaging(kPixels, kPixels, pixels.data(), false, nullptr, 0));
    return SidesOf(pixels, kPixels, int(12 / (40 * std::tan(0.5236)) * kPixels / 2));
}

struct View
{
    const char* name;
    void (Engine3D::*turn)();
    const char* outside; // top, left, nearest, right, bottom
    const char* inside;
};

constexpr View kViews[] = {
    {"coronal", &Engine3D::RotateToCoronal, "SRALI", "SRALI"},
    {"y", &Engine3D::RotateToY, "SRALI", "SRALI"},
    {"sagittal", &Engine3D::RotateToSagittal, "SALPI", "SALPI"},
    {"axial", &Engine3D::RotateToAxial, "ARILP", "ARILP"},
    {"z", &Engine3D::RotateToZ, "ARILP", "ARILP"},
    {"x", &Engine3D::RotateToX, "AILSP", "ASRIP"}, // the two cameras look in opposite directions
};

std::string FromBehind(const std::string& sides)
{
    const std::string opposite = "LRPASI";
    const char nearest = opposite[opposite.find(sides[2]) ^ 1];
    return {sides[0], sides[3], nearest, sides[1], sides[4]};
}
} // namespace

TEST(StandardViews, ShowThePatientFromOutsideAsReadersExpect)
{
    Patient patient;
    Engine3D& engine = patient.engine;
    EXPECT_EQ(SeenFromOutside(engine), "SRALI"); // from the front, the patient's left on the right
    for (const View& view : kViews)
    {
        SCOPED_TRACE(view.name);
        engine.RotateH(0.4f);
        engine.RotateScreen(1.1f);
        (engine.*view.turn)();
        EXPECT_EQ(SeenFromOutside(engine), view.outside);
        engine.RotateToBack();
        EXPECT_EQ(SeenFromOutside(engine), FromBehind(view.outside));
        engine.RotateToBack();
        EXPECT_EQ(SeenFromOutside(engine), view.outside);
    }
}

TEST(StandardViews, ShowThePatientFromInsideAsReadersExpect)
{
    Patient patient;
    Engine3D& engine = patient.engine;
    engine.SetRenderType(KsRenderPerspective);
    EXPECT_EQ(SeenFromInside(engine), FromBehind("ARILP")); // towards the feet
    for (const View& view : kViews)
    {
        SCOPED_TRACE(view.name);
        engine.RotateH(0.4f);
        engine.RotateScreen(1.1f);
        (engine.*view.turn)();
        EXPECT_EQ(SeenFromInside(engine), view.inside);
        engine.RotateToBack();
        EXPECT_EQ(SeenFromInside(engine), FromBehind(view.inside));
    }
}

TEST(StandardViews, TurnWhatIsSeenTheWayAHandWouldTurnIt)
{
    constexpr float kQuarter = 1.57079633f;
    Patient patient;
    Engine3D& engine = patient.engine;
    engine.RotateH(kQuarter); // the eye goes to the right
    EXPECT_EQ(SeenFromOutside(engine), "SALPI");
    engine.RotateToCoronal();
    engine.RotateV(1.5f); // the eye goes up, nearly above; anterior is still below
    EXPECT_EQ(SeenFromOutside(engine), "PRSLA");
    engine.RotateToCoronal();
    engine.RotateScreen(kQuarter); // the picture turns to the left
    EXPECT_EQ(SeenFromOutside(engine), "LSAIR");
}
} // namespace corvane::tests
