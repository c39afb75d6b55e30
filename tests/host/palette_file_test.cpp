#include "host/palette_file.h"
#include "read_testing.h"

namespace corvane::host
{
namespace
{
TransferFunction Read(const std::string& text, const std::string& name = "")
{
    const ScratchFolder folder;
    WriteBytes(folder / "file", text);
    return ReadTransferFunction(folder / "file" + (name.empty() ? "" : "#" + name));
}

std::string Refusal(const std::string& text, const std::string& name = "")
{
    const std::string message = ErrorOf([&] { Read(text, name); });
    EXPECT_TRUE(Contains(message, "/file: "));
    return message;
}

const std::string kOwn = R"({
  "name": "liver",
  "opacityDistance": 2.5,
  "beyondEnds": "hide",
  "shading": {"ambient": 0.25, "specular": 0.5},
  "points": [
    {"value": -10.5, "color": "#FF8000", "opacity": 0},
    {"value": 200, "color": "#0000ff", "opacity": 0.75}
  ]
})";

const std::string kProperties = R"({
  "@schema": "volume-property-schema-v1.0.0.json#",
  "volumeProperties": [{
    "effectiveRange": [100, 300], "interpolationType": "linear",
    "components": [{
      "componentWeight": 1.0, "shade": true,
      "lighting": {"diffuse": 0.9, "ambient": 0.2, "specular": 0.0, "specularPower": 10.0},
      "disableGradientOpacity": false, "scalarOpacityUnitDistance": 3.0,
      "rgbTransferFunction": {"type": "colorTransferFunction", "points": [
        {"x": 100, "color": [0.5, 0.25, 0.125], "midpoint": 0.5, "sharpness": 0},
        {"x": 300, "color": [1, 1, 0.5], "midpoint": 0.5, "sharpness": 0}]},
      "scalarOpacity": {"type": "piecewiseFunction", "points": [
        {"x": 120, "y": 0, "midpoint": 0.5, "sharpness": 0},
        {"x": 280, "y": 0.6, "midpoint": 0.5, "sharpness": 0}]},
      "gradientOpacity": {"type": "piecewiseFunction", "points": [{"x": 0, "y": 1}, {"x": 255, "y": 1}]}
    }]
  }]
})";

const std::string kPresets = R"(<?xml version="1.0"?>
<MRML>
  <Nested><VolumeProperty name="First" scalarOpacity="4 0 0 100 0.5" colorTransfer="8 0 0 0 0 100 1 0.5 0.25"
    gradientOpacity="4 0 1 255 1" shade="1" ambient="0.2" diffuse="0.8" specular="0" specularPower="1"
    interpolation="1" selected="false"/></Nested>
  <VolumeProperty name="Second" scalarOpacity="4 0 0
  100 1" colorTransfer="4 0 1 1 1" gradientOpacity="4 0 0 90 1" shade="1" specular="0.3" specularPower="10" interpolation="0"/>
  <VolumeProperty name="Unlit" scalarOpacity="4 0 0 100 1" colorTransfer="4 0 1 1 1" shade="0" specular="0.3"/>
</MRML>)";

std::string With(std::string text, const std::string& part, const std::string& other)
{
    const size_t at = text.find(part);
    EXPECT_NE(at, std::string::npos) << part;
    return text.replace(at, part.size(), other);
}

TEST(PaletteFile, ReadsItsOwnForm)
{
    const TransferFunction function = Read(kOwn);
    EXPECT_EQ(function.name, "liver");
    EXPECT_EQ(function.opacityDistance, 2.5);
    EXPECT_FALSE(function.holdEnds);
    EXPECT_EQ(function.ambient, 0.25);
    EXPECT_EQ(function.diffuse, 0.816); // not given
    EXPECT_EQ(function.specular, 0.5);
    ASSERT_EQ(function.opacities.size(), 2u);
    EXPECT_EQ(function.opacities[0].value, -10.5);
    EXPECT_EQ(function.opacities[1].opacity, 0.75);
    EXPECT_EQ(function.colours[0].red, 1);
    EXPECT_EQ(function.colours[0].green, 128 / 255.0);
    EXPECT_EQ(function.colours[1].blue, 1);
    EXPECT_TRUE(function.warnings.empty());
}

TEST(PaletteFile, NeedsNothingButPoints)
{
    const TransferFunction function =
        Read("\xEF\xBB\xBF{\"points\": [{\"value\": 0, \"color\": \"#000000\", \"opacity\": 0},"
             "{\"value\": 1, \"color\": \"#000000\", \"opacity\": 1}]}");
    EXPECT_EQ(function.name, "file");
    EXPECT_EQ(function.opacityDistance, 0);
    EXPECT_TRUE(function.holdEnds);
}

TEST(PaletteFile, SaysWhatIsWrongInItsOwnForm)
{
    EXPECT_TRUE(Contains(Refusal(With(kOwn, "beyondEnds", "beyondEnd")), "\"beyondEnd\", which means nothing"));
    EXPECT_TRUE(Contains(Refusal(With(kOwn, "\"hide\"", "\"fade\"")), "\"hold\" or \"hide\""));
    EXPECT_TRUE(Contains(Refusal(With(kOwn, "#FF8000", "orange")), "points 1 needs a \"color\" like"));
    EXPECT_TRUE(Contains(Refusal(With(kOwn, "#FF8000", "#FF80G0")), "points 1 needs a \"color\" like"));
    EXPECT_TRUE(Contains(Refusal(With(kOwn, "0.75", "1.75")), "opacities are 0 to 1; 'liver' has 1.75"));
    EXPECT_TRUE(Contains(Refusal(With(kOwn, "0.75", "\"high\"")), "points 2 needs a number \"opacity\""));
    EXPECT_TRUE(Contains(Refusal(With(kOwn, "200", "-200")), "in the order of their values"));
    EXPECT_TRUE(Contains(Refusal(With(kOwn, "200", "2e300")), "which no volume can hold"));
    EXPECT_TRUE(Contains(Refusal(With(kOwn, "2.5", "0")), "\"opacityDistance\" above 0"));
    EXPECT_TRUE(Contains(Refusal(With(kOwn, "0.25", "-1")), "shading coefficients are 0 to 10"));
    EXPECT_TRUE(Contains(Refusal("{\"points\": []}"), "two points of opacity"));
    EXPECT_TRUE(Contains(Refusal("{\"points\": 5}"), "needs a list \"points\""));
    EXPECT_TRUE(Contains(Refusal("{\"points\": [3]}"), "points 1 must be an object"));
    EXPECT_TRUE(Contains(Refusal("{\"name\": \"x\"}"), "needs \"points\""));
    EXPECT_TRUE(Contains(Refusal(With(kOwn, "\"hide\",", "\"hide\"")), "line 5 is no JSON"));
    EXPECT_TRUE(Contains(Refusal(kOwn, "liver"), "#liver belongs to presets in XML"));
}

TEST(PaletteFile, ReadsVolumePropertiesOf3DSlicer)
{
    const TransferFunction function = Read(kProperties);
    EXPECT_EQ(function.opacityDistance, 3);
    EXPECT_TRUE(function.holdEnds);
    EXPECT_EQ(function.ambient, 0.2);
    EXPECT_EQ(function.diffuse, 0.9);
    EXPECT_EQ(function.opacities[0].value, 120);
    EXPECT_EQ(function.opacities[1].opacity, 0.6);
    EXPECT_EQ(function.colours[0].value, 100);
    EXPECT_EQ(function.colours[0].blue, 0.125);
    EXPECT_TRUE(function.warnings.empty());
}

TEST(PaletteFile, WarnsOfWhatVolumePropertiesAskInVain)
{
    const auto warningOf = [](const std::string& text)
    {
        const TransferFunction function = Read(text);
        EXPECT_EQ(function.warnings.size(), 1u);
        return function.warnings.empty() ? "" : function.warnings[0];
    };
    EXPECT_TRUE(
        Contains(warningOf(With(kProperties, "{\"x\": 0, \"y\": 1}", "{\"x\": 0, \"y\": 0}")), "gradient opacity"));
    EXPECT_TRUE(Contains(warningOf(With(kProperties, "\"y\": 0.6, \"midpoint\": 0.5", "\"y\": 0.6, \"midpoint\": 0.2")),
                         "bent"));
    EXPECT_TRUE(Contains(warningOf(With(kProperties, "\"specular\": 0.0", "\"specular\": 0.4")), "specular power 10"));
    EXPECT_TRUE(Contains(warningOf(With(kProperties, "}]\n  }]", "}, {}]\n  }]")), "the first one is used"));
    EXPECT_TRUE(Contains(Refusal(With(kProperties, "\"scalarOpacity\"", "\"opacity\"")), "needs \"scalarOpacity\""));
    EXPECT_TRUE(
        Contains(Refusal(With(kProperties, "[0.5, 0.25, 0.125]", "[0.5, 0.25]")), "points 1 needs three numbers"));
    EXPECT_TRUE(Contains(Refusal(With(kProperties, "[1, 1, 0.5]", "[1, 255, 0.5]")), "red, green and blue are 0 to 1"));
    EXPECT_TRUE(Contains(Refusal("{\"volumeProperties\": []}"), "no volume property"));
}

TEST(PaletteFile, ReadsPresetsInXmlByName)
{
    const TransferFunction first = Read(kPresets, "First");
    EXPECT_EQ(first.name, "First");
    EXPECT_EQ(first.opacityDistance, 1);
    EXPECT_EQ(first.opacities[1].value, 100);
    EXPECT_EQ(first.opacities[1].opacity, 0.5);
    EXPECT_EQ(first.colours[1].green, 0.5);
    EXPECT_EQ(first.diffuse, 0.8);
    EXPECT_TRUE(first.warnings.empty());
    const TransferFunction second = Read(kPresets, "Second");
    ASSERT_EQ(second.warnings.size(), 3u);
    EXPECT_TRUE(Contains(second.warnings[0], "'Second' has a gradient opacity"));
    EXPECT_TRUE(Contains(second.warnings[1], "without interpolation"));
    EXPECT_TRUE(Contains(second.warnings[2], "specular power 10"));
    const TransferFunction unlit = Read(kPresets, "Unlit");
    EXPECT_EQ(unlit.ambient, 1);
    EXPECT_EQ(unlit.diffuse, 0);
    EXPECT_EQ(unlit.specular, 0);
}

TEST(PaletteFile, NeedsNoNameForASinglePreset)
{
    EXPECT_EQ(Read("<VolumeProperty name=\"Only\" scalarOpacity=\"4 0 0 1 1\" colorTransfer=\"4 0 1 1 1\"/>").name,
              "Only");
}

TEST(PaletteFile, SaysWhatIsWrongInXml)
{
    EXPECT_TRUE(Contains(Refusal(kPresets), "holds several presets; choose one as FILE#NAME: First, Second, Unlit"));
    EXPECT_TRUE(Contains(Refusal(kPresets, "Third"), "holds no preset 'Third'"));
    EXPECT_TRUE(Contains(Refusal(With(kPresets, "4 0 0 100 0.5", "4 0 0 100"), "First"),
                         "line 3, scalarOpacity of 'First' announces 4 numbers and has 3"));
    EXPECT_TRUE(Contains(Refusal(With(kPresets, "4 0 0 100 0.5", "3 0 0 100"), "First"), "2 numbers for each point"));
    EXPECT_TRUE(Contains(Refusal(With(kPresets, "100 0.5\"", "100 half\""), "First"), "a count and as many numbers"));
    EXPECT_TRUE(
        Contains(Refusal(With(kPresets, "scalarOpacity=", "opacity="), "First"), "a count and as many numbers"));
    EXPECT_TRUE(
        Contains(Refusal(With(kPresets, "diffuse=\"0.8\"", "diffuse=\"much\""), "First"), "diffuse of 'First'"));
    EXPECT_TRUE(Contains(Refusal(With(kPresets, "</MRML>", "</MRM>"), "First"), "is no complete XML; see line 2"));
    EXPECT_TRUE(Contains(Refusal("<MRML/>"), "holds no VolumeProperty"));
}

TEST(PaletteFile, ReadsTheExampleOfItsDescription)
{
    const std::string page = ReadBytes(CORVANE_PALETTE_PAGE);
    const size_t start = page.find("```json") + 7;
    const TransferFunction function = Read(page.substr(start, page.find("```", start) - start));
    EXPECT_EQ(function.name, "kidneys and vessels");
    EXPECT_EQ(function.opacities.size(), 3u);
    EXPECT_EQ(function.diffuse, 0.816);
}

TEST(PaletteFile, RefusesNumbersBeyondTheirRange)
{
    EXPECT_TRUE(Contains(Refusal(With(kOwn, "200", "1e999")), "holds a number that is too large"));
}

TEST(PaletteFile, NamesThePaletteInOneLine)
{
    EXPECT_EQ(Read(With(kOwn, "liver", "a\\nliver\\u001b[2J")).name, "a liver [2J");
}

TEST(PaletteFile, RefusesOtherFiles)
{
    EXPECT_TRUE(Contains(Refusal(""), "neither a palette in JSON nor presets in XML"));
    EXPECT_TRUE(Contains(Refusal("0 1 2 3"), "neither"));
    EXPECT_TRUE(Contains(ErrorOf([] { ReadTransferFunction("/absent/palette.json"); }), "cannot be read"));
    const ScratchFolder folder;
    EXPECT_TRUE(Contains(ErrorOf([&] { ReadTransferFunction(folder.Path()); }), "cannot be read"));
    WriteBytes(folder / "large", std::string((16 << 20) + 1, ' '));
    EXPECT_TRUE(Contains(ErrorOf([&] { ReadTransferFunction(folder / "large"); }), "too large"));
    WriteBytes(folder / "a#b", kOwn); // no preset is meant
    EXPECT_EQ(ReadTransferFunction(folder / "a#b").name, "liver");
}
} // namespace
} // namespace corvane::host
