#ifndef CORVANE_TESTS_HOST_READ_TESTING_H
#define CORVANE_TESTS_HOST_READ_TESTING_H

// What the tests of the readers share.

#include "host/error.h"
#include "host/volume.h"

#include <cmath>
#include <cstdint>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <functional>
#include <gtest/gtest.h>
#include <numbers>
#include <string>
#include <unistd.h>
#include <vector>

namespace corvane::host
{
// A folder of its own for one test, removed at its end.
class ScratchFolder
{
public:
    ScratchFolder()
    {
        std::string pattern = (std::filesystem::temp_directory_path() / "corvane_test_XXXXXX").string();
        path_ = mkdtemp(pattern.data());
    }
    ~ScratchFolder() { std::filesystem::remove_all(path_); }
    ScratchFolder(const ScratchFolder&) = delete;
    ScratchFolder& operator=(const ScratchFolder&) = delete;

    std::string operator/(const std::string& name) const { return (path_ / name).string(); }
    std::string Path() const { return path_.string(); }

private:
    std::filesystem::path path_;
};

inline void WriteBytes(const std::string& path, const std::string& bytes)
{
    std::ofstream(path, std::ios::binary).write(bytes.data(), std::streamsize(bytes.size()));
}

inline std::string ReadBytes(const std::string& path)
{
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

// The bytes of a number as this machine holds them, or turned.
template <typename T>
std::string BytesOf(T value, bool turned = false)
{
    std::string bytes(sizeof value, '\0');
    std::memcpy(bytes.data(), &value, sizeof value);
    return turned ? std::string(bytes.rbegin(), bytes.rend()) : bytes;
}

// The message of the Error that an action throws; "no error" when it throws none.
inline std::string ErrorOf(const std::function<void()>& action, ErrorKind kind = ErrorKind::Input)
{
    try
    {
        action();
    }
    catch (const Error& error)
    {
        EXPECT_EQ(error.Kind(), kind);
        EXPECT_EQ(std::string(error.what()).find('\n'), std::string::npos) << error.what();
        return error.what();
    }
    return "no error";
}

inline testing::AssertionResult Contains(const std::string& text, const std::string& part)
{
    if (text.find(part) != std::string::npos)
        return testing::AssertionSuccess();
    return testing::AssertionFailure() << "'" << part << "' is not in: " << text;
}

inline testing::AssertionResult HasWarning(const Volume& volume, const std::string& part)
{
    std::string all;
    for (const std::string& warning : volume.warnings)
        all += warning + "; ";
    return Contains(all, part);
}

inline void ExpectNear(Vec3 a, Vec3 b, double tolerance, const std::string& what)
{
    EXPECT_NEAR(a.x, b.x, tolerance) << what;
    EXPECT_NEAR(a.y, b.y, tolerance) << what;
    EXPECT_NEAR(a.z, b.z, tolerance) << what;
}

inline void ExpectSameGrid(const Grid& a, const Grid& b, double tolerance = 1e-6)
{
    EXPECT_EQ(a.sizeX, b.sizeX);
    EXPECT_EQ(a.sizeY, b.sizeY);
    EXPECT_EQ(a.sizeZ, b.sizeZ);
    ExpectNear(a.spacing, b.spacing, tolerance, "spacing");
    ExpectNear(a.origin, b.origin, tolerance, "origin");
    ExpectNear(a.rowDirection, b.rowDirection, tolerance, "row direction");
    ExpectNear(a.columnDirection, b.columnDirection, tolerance, "column direction");
    ExpectNear(a.sliceDirection, b.sliceDirection, tolerance, "slice direction");
}

// Stored values against a function of the voxel index, after slope and intercept.
inline void ExpectValues(const Volume& volume, const std::function<double(int, int, int)>& value,
                         double tolerance = 1e-9)
{
    const Grid& grid = volume.grid;
    ASSERT_EQ(volume.voxels.size(), grid.VoxelCount());
    size_t index = 0;
    for (int k = 0; k < grid.sizeZ; ++k)
        for (int j = 0; j < grid.sizeY; ++j)
            for (int i = 0; i < grid.sizeX; ++i, ++index)
                ASSERT_NEAR(volume.valueSlope * volume.voxels[index] + volume.valueIntercept, value(i, j, k), tolerance)
                    << "voxel " << i << " " << j << " " << k;
}

// A grid of unequal sizes and spacings, turned about all axes, whose slice direction leans `tiltDegrees` off the
// normal.
inline Grid ObliqueGrid(int sizeX, int sizeY, int sizeZ, double tiltDegrees)
{
    const auto turn = [](Vec3 v) { // 20 degrees about z, then 15 about x
        const double a = 20 * std::numbers::pi / 180, b = 15 * std::numbers::pi / 180;
        const Vec3 u = {std::cos(a) * v.x - std::sin(a) * v.y, std::sin(a) * v.x + std::cos(a) * v.y, v.z};
        return Vec3{u.x, std::cos(b) * u.y - std::sin(b) * u.z, std::sin(b) * u.y + std::cos(b) * u.z};
    };
    const double tilt = tiltDegrees * std::numbers::pi / 180;
    Grid grid;
    grid.sizeX = sizeX;
    grid.sizeY = sizeY;
    grid.sizeZ = sizeZ;
    grid.spacing = {0.75, 1.25, 2.5};
    grid.origin = {-123.5, 45.25, 678.125};
    grid.rowDirection = turn({1, 0, 0});
    grid.columnDirection = turn({0, 1, 0});
    grid.sliceDirection = turn({0, std::sin(tilt), std::cos(tilt)});
    return grid;
}

// A value that tells every voxel of a small volume from its neighbours.
inline int TestValue(int i, int j, int k) { return 7 * i - 31 * j + 101 * k - 50; }
} // namespace corvane::host

#endif
