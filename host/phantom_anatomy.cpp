#include "phantom_anatomy.h"

namespace corvane::host
{
namespace
{
constexpr double kCavityDepth = 24; // mm from the skin to the inside of the body wall

// Skin, fat, muscle, and the fat between the organs.
void AddBody(std::vector<Tissue>& tissues)
{
    tissues.push_back({-150, PhantomRest, -1000, {}, {}, {{{0, 120, 0}, 118, 7, 200}}}); // the table
    tissues.push_back({25, PhantomBody, 0});
    tissues.push_back({-100, PhantomBody, 2.5});
    tissues.push_back({58, PhantomBody, 11});
    tissues.push_back({-90, PhantomBody, kCavityDepth});
    tissues.push_back({58, PhantomBody, 6, {{{32, 66, 0}, {22, 17, 400}}, {{-32, 66, 0}, {22, 17, 400}}}}); // back
}

void AddLungs(std::vector<Tissue>& tissues)
{
    tissues.push_back({-850, PhantomLung, kCavityDepth, {{{-62, 0, 88}, {50, 80, 92}}, {{64, 2, 92}, {46, 78, 92}}}});
    Tissue vessels = {60, PhantomLung};
    for (const Vec3 root : {Vec3{-32, 2, 62}, Vec3{34, 6, 66}})
        for (const Vec3 way : {Vec3{1, 0.1, 0.75}, Vec3{1, -0.5, -0.2}, Vec3{0.8, 0.7, -0.5}})
        {
            const Vec3 direction = Unit({root.x > 0 ? way.x : -way.x, way.y, way.z});
            const std::vector<Capsule> tree =
                BranchingTree(root, direction, Unit(Cross(direction, {0, 0, 1})), 22, 4, 4);
            vessels.capsules.insert(vessels.capsules.end(), tree.begin(), tree.end());
        }
    vessels.depth = kCavityDepth + 6;
    tissues.push_back(vessels);
}

void AddOrgans(std::vector<Tissue>& tissues)
{
    tissues.push_back({40, PhantomBody, kCavityDepth, {{{0, 8, 105}, {30, 44, 100}}, {{12, -22, 40}, {52, 40, 44}}}});
    tissues.push_back(
        {110, PhantomLiver, kCavityDepth + 2, {{{-56, -2, -8}, {66, 70, 50}}, {{-8, -30, 2}, {52, 32, 28}}}});
    Tissue portal = {190, PhantomLiver};
    portal.capsules = BranchingTree({-28, 4, -16}, Unit({-1, -0.2, 0.25}), Unit({0.2, -1, 0.3}), 24, 5, 4);
    tissues.push_back(portal);
    tissues.push_back({20, PhantomBody, kCavityDepth + 2, {{{-44, -46, -48}, {13, 15, 20}}}}); // gall bladder
    tissues.push_back({30, PhantomBody, kCavityDepth + 2, {{{46, -26, 2}, {36, 34, 26}}}});    // stomach
    tissues.push_back({125, PhantomBody, kCavityDepth + 2, {{{86, 30, 4}, {22, 34, 38}}}});    // spleen
    // Kidneys, the left one higher: enhanced rim, fat at the hilum.
    tissues.push_back(
        {185, PhantomBody, kCavityDepth, {{{58, 40, -52}, {24, 20, 40}}, {{-58, 42, -70}, {24, 20, 40}}}});
    tissues.push_back({105, PhantomBody, 0, {{{55, 38, -52}, {14, 11, 29}}, {{-55, 40, -70}, {14, 11, 29}}}});
    tissues.push_back({-80, PhantomBody, 0, {{{42, 36, -52}, {12, 6, 12}}, {{-42, 38, -70}, {12, 6, 12}}}});
}

// One vertebra with its arch and processes; `grow` mm larger or smaller than it is.
void AddVertebra(Tissue& bone, double z, double grow)
{
    bone.cylinders.push_back({{0, 44, z}, 20 + grow, 16 + grow, 10.5 + grow});
    for (double side : {-1.0, 1.0})
    {
        bone.capsules.push_back({{11 * side, 54, z + 3}, {13 * side, 68, z + 2}, 5 + grow, 5 + grow}); // pedicle
        bone.capsules.push_back({{13 * side, 68, z + 2}, {0, 79, z - 3}, 5 + grow, 4.5 + grow});       // lamina
        bone.capsules.push_back({{13 * side, 66, z + 2}, {32 * side, 71, z + 3}, 4.5 + grow, 4 + grow});
    }
    bone.capsules.push_back({{0, 79, z - 3}, {0, 90, z - 11}, 4.5 + grow, 4 + grow}); // spinous process
}

// One rib, from the spine round the side to the front; it sinks on its way. side: 1 left, -1 right.
void AddRib(Tissue& bone, double z, double side, double reach, double grow)
{
    const Ellipsoid body = PhantomBodyShape();
    const double f = z / body.radii.z, shrink = 1 - 0.5 * f * f; // the body is that much narrower here
    const double radiusX = body.radii.x * shrink - 17, radiusY = body.radii.y * shrink - 17;
    std::vector<TubePoint> chain = {{{14 * side, 58, z + 4}, 4.5 + grow}, {{34 * side, 71, z + 2}, 4.5 + grow}};
    // NOLINTNEXTLINE(clang-analyzer-security.FloatLoopCounter): reach lies well between two values of t
    for (double t = 0.42; t <= reach; t += 0.08)
    {
        // The half-angle form of a circle: no sine or cosine.
        const double across = 2 * t / (1 + t * t), back = (1 - t * t) / (1 + t * t);
        chain.push_back({{side * radiusX * across, radiusY * back, z + 8 - 26 * t}, 4.5 + grow});
    }
    const std::vector<Capsule> rib = TubeAlong(chain);
    bone.capsules.insert(bone.capsules.end(), rib.begin(), rib.end());
}

void AddBones(std::vector<Tissue>& tissues)
{
    constexpr double kCortex = 2.2; // mm of dense bone around the spongy inside
    Tissue dense = {750, PhantomBone}, spongy = {240, PhantomBone};
    for (Tissue* bone : {&dense, &spongy})
    {
        const double grow = bone == &dense ? 0 : -kCortex;
        for (int level = 0; level < 13; ++level)
        {
            const double z = -162 + 27 * level;
            AddVertebra(*bone, z, grow);
            if (level >= 5) // the lowest rib on either side ends early
                for (double side : {-1.0, 1.0})
                    AddRib(*bone, z, side, level == 5 ? 1.0 : 2.6, grow);
        }
        bone->ellipsoids.push_back({{0, -73, 78}, {17 + grow, 6 + grow, 66 + grow}});     // breastbone
        bone->ellipsoids.push_back({{86, 30, -176}, {20 + grow, 48 + grow, 46 + grow}});  // pelvis, left
        bone->ellipsoids.push_back({{-86, 30, -176}, {20 + grow, 48 + grow, 46 + grow}}); // and right
    }
    Tissue discs = {85, PhantomBody};
    for (int level = 0; level < 13; ++level)
        discs.cylinders.push_back({{0, 44, -162 + 27 * level + 13.5}, 19, 15, 4});
    tissues.push_back(discs);
    tissues.push_back(dense);
    tissues.push_back(spongy);
    tissues.push_back({20, PhantomBody, 0, {}, {}, {{{0, 65, 0}, 8, 6, 400}}}); // spinal canal
}

void AddVessels(std::vector<Tissue>& tissues)
{
    Tissue vessel = {340, PhantomVessel};
    const auto add = [&](const std::vector<TubePoint>& points)
    {
        const std::vector<Capsule> tube = TubeAlong(SmoothCurve(points, 4));
        vessel.capsules.insert(vessel.capsules.end(), tube.begin(), tube.end());
    };
    vessel.ellipsoids.push_back({{26, -22, 30}, {22, 20, 26}}); // left chamber of the heart
    add({{{16, -22, 42}, 13},
         {{-8, -24, 76}, 14.5},
         {{-6, -14, 104}, 14},
         {{8, 4, 118}, 13},
         {{21, 26, 108}, 12.5},
         {{24, 30, 84}, 12},
         {{22, 28, 40}, 11.5},
         {{12, 21, -20}, 10.5},
         {{6, 17, -62}, 9.5},
         {{4, 16, -92}, 9}});
    add({{{-2, -6, 112}, 7}, {{-10, -6, 132}, 6}, {{-18, -2, 160}, 5}, {{-22, 0, 190}, 4.5}});  // to the right
    add({{{8, 4, 118}, 6}, {{12, 0, 140}, 5}, {{16, -2, 190}, 4}});                             // to the left
    add({{{16, 16, 114}, 6}, {{28, 16, 134}, 5.5}, {{46, 12, 152}, 5}, {{80, 10, 158}, 4}});    // left arm
    add({{{10, 19, -36}, 5}, {{8, 2, -40}, 4.5}, {{-14, -2, -32}, 4}, {{-30, 2, -20}, 3.5}});   // liver
    add({{{8, 2, -40}, 4}, {{36, 4, -30}, 3.5}, {{66, 22, -10}, 3}});                           // spleen
    add({{{8, 18, -50}, 5}, {{6, -4, -66}, 4.5}, {{2, -14, -96}, 4}, {{-12, -16, -124}, 2.8}}); // bowel
    add({{{7, 18, -56}, 4}, {{26, 30, -54}, 3.5}, {{44, 37, -52}, 3}});                         // left kidney
    add({{{6, 17, -62}, 4}, {{-18, 24, -66}, 3.5}, {{-44, 39, -70}, 3}});                       // right kidney
    add({{{4, 16, -88}, 7.5}, {{20, 20, -116}, 6.5}, {{38, 22, -146}, 6}, {{44, 8, -190}, 5}}); // left leg
    add({{{4, 16, -88}, 7.5}, {{-14, 20, -114}, 6.5}, {{-36, 24, -146}, 6}, {{-46, 10, -190}, 5}});
    tissues.push_back(vessel);
    // Lime in the wall of the great vessel.
    tissues.push_back({650, PhantomVessel, 0, {{{14, 15, -76}, {2.5, 4, 5}}, {{20, -4, 118}, {4, 2.5, 2.5}}}});
}

// A tube of air with a wall, as bowel and airway are.
void AddAirTube(std::vector<Tissue>& tissues, const std::vector<std::vector<TubePoint>>& chains, double wall)
{
    Tissue outside = {45, PhantomBody}, air = {-960, PhantomAirTube};
    for (const std::vector<TubePoint>& chain : chains)
        for (Tissue* tissue : {&outside, &air})
        {
            const std::vector<Capsule> tube = TubeAlong(chain, tissue == &outside ? wall : 0);
            tissue->capsules.insert(tissue->capsules.end(), tube.begin(), tube.end());
        }
    tissues.push_back(outside);
    tissues.push_back(air);
}

void AddAirTubes(std::vector<Tissue>& tissues)
{
    // The airway, and its two branches.
    AddAirTube(tissues,
               {SmoothCurve({{{2, 8, 190}, 8.5}, {{1, 6, 130}, 8.5}, {{0, 6, 84}, 8.5}}, 4),
                SmoothCurve({{{0, 6, 86}, 7}, {{-20, 8, 68}, 6.5}, {{-40, 12, 50}, 5}}, 4),
                SmoothCurve({{{0, 6, 86}, 6.5}, {{24, 10, 72}, 6}, {{44, 16, 60}, 4.5}}, 4)},
               2);

    // The colon, from its lower end at the back, up the left side, across the front, down the right side; a fold
    // every 24 mm narrows it.
    std::vector<TubePoint> colon = SmoothCurve({{{0, 28, -200}, 12},
                                                {{6, 14, -150}, 12},
                                                {{34, -8, -132}, 11},
                                                {{66, 2, -134}, 11},
                                                {{80, 14, -104}, 12},
                                                {{84, 4, -64}, 12},
                                                {{78, -14, -40}, 13},
                                                {{52, -42, -56}, 13},
                                                {{10, -52, -78}, 13},
                                                {{-40, -44, -84}, 13},
                                                {{-78, -14, -84}, 14},
                                                {{-80, 2, -112}, 14},
                                                {{-70, 0, -142}, 14}},
                                               3);
    double travelled = 0;
    for (size_t n = 1; n < colon.size(); ++n)
    {
        travelled += Length(colon[n].position - colon[n - 1].position);
        while (travelled > 24)
            travelled -= 24;
        const double t = travelled / 24, belly = 16 * t * t * (1 - t) * (1 - t); // 0 at a fold, 1 between two
        colon[n].radius -= 3 * (1 - belly) * (1 - belly);
    }
    AddAirTube(tissues, {colon}, 2.5);
    tissues.push_back({45, PhantomBody, 0, {{{16, -58, -86}, {6, 6, 5.5}}}}); // a polyp in the front part
}
} // namespace

Ellipsoid PhantomBodyShape() { return {{0, 0, -10}, {142, 104, 460}}; }

std::vector<Tissue> PhantomAnatomy()
{
    std::vector<Tissue> tissues;
    AddBody(tissues);
    AddLungs(tissues);
    AddOrgans(tissues);
    AddBones(tissues);
    AddVessels(tissues);
    AddAirTubes(tissues);
    tissues.push_back({1500, PhantomMarker, -1000, {{{70, -68, 112}, {5, 5, 5}}}});
    return tissues;
}
} // namespace corvane::host
