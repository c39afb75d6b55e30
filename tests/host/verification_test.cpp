#include "host/verification.h"

#include <map>
#include <set>

#include <gtest/gtest.h>

namespace corvane::host
{
namespace
{
std::map<std::string, uint64_t> Pictures()
{
    std::map<std::string, uint64_t> pictures;
    MakeVerificationPictures([&](const PictureHash& picture)
                             { EXPECT_TRUE(pictures.emplace(picture.name, picture.hash).second) << picture.name; });
    return pictures;
}

TEST(Verification, PicturesAreThoseOfEveryMachine)
{
    std::vector<std::string> bad;
    const int wrong = VerifyPictures(
        [&](const std::string& line)
        {
            if (line.compare(0, 2, "ok") != 0)
                bad.push_back(line);
        });
    EXPECT_EQ(wrong, 0);
    for (const std::string& line : bad)
        ADD_FAILURE() << line;
}

TEST(Verification, ViewsThatAreTheSameAreEqualAndOthersAreNot)
{
    std::map<std::string, uint64_t> pictures = Pictures();
    for (const std::string scene : {"straight/", "tilted/"})
    {
        const auto view = [&](const char* name) { return pictures.at(scene + "volume rendering " + name); };
        EXPECT_EQ(view("coronal"), view("y"));
        EXPECT_EQ(view("axial"), view("z"));
        EXPECT_EQ(pictures.at(scene + "first view"), view("coronal"));
        const std::set<uint64_t> different = {view("coronal"), view("coronal from behind"), view("sagittal"),
                                              view("axial"),   view("axial from behind"),   view("x")};
        EXPECT_EQ(different.size(), 6u);
        EXPECT_NE(pictures.at(scene + "cut"), pictures.at(scene + "visible box"));
    }
    EXPECT_NE(pictures.at("straight/first view"), pictures.at("tilted/first view"));
}

TEST(Verification, EveryExpectedPictureIsMade)
{
    const std::map<std::string, uint64_t> pictures = Pictures();
    EXPECT_EQ(pictures.size(), ExpectedPictureHashes().size());
    for (const PictureHash& expected : ExpectedPictureHashes())
        EXPECT_TRUE(pictures.count(expected.name)) << expected.name;
}

TEST(Verification, WritesHashesWithAllTheirDigits)
{
    EXPECT_EQ(HashText(0), "0000000000000000");
    EXPECT_EQ(HashText(0x0123456789abcdefu), "0123456789abcdef");
}
} // namespace
} // namespace corvane::host
