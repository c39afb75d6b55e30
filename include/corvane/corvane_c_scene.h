#ifndef CORVANE_CORVANE_C_SCENE_H
#define CORVANE_CORVANE_C_SCENE_H

// One volume with its labels, a palette for each label, reconstruction planes and a history of cuts; see corvane_c.h
// for what holds for every function. A scene draws on the CPU.
//
// Where a picture lies is always an argument, never state: take an image plane from corvane_scene_view_plane (from
// outside), corvane_scene_mpr_plane (through the volume) or make one, and hand it to the function that draws. So
// threads that share a scene cannot disturb each other's pictures. A plane's directions are unit vectors at right
// angles (to 0.001), its spacings 1e-6 to 1e6 mm, its position lies within 1e9 mm.
//
// Memory, apart from the caller's voxels: 1 byte per voxel for labels, from the first label or cut on, about 0.9 for
// the renderer's tree, and the history's limit.

#include "corvane_c_common.h"

// A handle of a scene.
typedef struct CorvaneScene CorvaneScene;

// NULL when memory is short and for an interface that the library does not speak.
CORVANE_C_API CorvaneScene* corvane_scene_create(uint32_t interfaceVersion);
CORVANE_C_API void corvane_scene_destroy(CorvaneScene* scene);

// Loads a volume: labels 0, nothing cut, no history, the planes through its centre, and for label 0 a palette made for
// CT. The first form keeps the slices, whose table it copies; the second takes voxels that lie in one piece, sizeX *
// sizeY * sizeZ of them, and leaves geometry->slices unread. The voxels must live until the next volume, _clear or
// _destroy. Sizes are 1 to 2^24, spacings above 0; what has fewer than four voxels along an axis is loaded, but shows
// nothing. A volume that is refused changes nothing; when memory is short the scene is empty.
CORVANE_C_API CorvaneStatus corvane_scene_set_volume(CorvaneScene* scene, const KsVolumeData* volume);
CORVANE_C_API CorvaneStatus corvane_scene_set_voxels(CorvaneScene* scene, const KsVolumeData* geometry,
                                                     const int16_t* voxels, size_t voxelCount);
CORVANE_C_API CorvaneStatus corvane_scene_clear(CorvaneScene* scene);

// The box, in patient space, around the part of the volume that can be sampled.
CORVANE_C_API CorvaneStatus corvane_scene_get_bounding_box(CorvaneScene* scene, float* min3, float* max3);

// What of the volume is shown by renderings, projections and endoscopies: a box given by two opposite corners. Planes
// and slabs show all of it.
CORVANE_C_API CorvaneStatus corvane_scene_set_visible_box(CorvaneScene* scene, const float* a3, const float* b3);
CORVANE_C_API CorvaneStatus corvane_scene_get_visible_box(CorvaneScene* scene, float* min3, float* max3);

// The label of each voxel, 0 to 63. Setting takes exactly one byte per voxel, copies them and leaves cuts as they are.
// What is read has 64 added where a voxel is cut away.
CORVANE_C_API CorvaneStatus corvane_scene_set_labels(CorvaneScene* scene, const uint8_t* labels, size_t labelCount);
CORVANE_C_API CorvaneStatus corvane_scene_get_labels(CorvaneScene* scene, uint8_t* labels, size_t capacity);

// The palette of a label, 0 to 63, in volume renderings and endoscopies. A label without one is not shown, nor is one
// that is not visible. Points may stand in any order; of those with the same value the first counts; between points
// colour and opacity are linear, outside them nothing shows. At least two different values are needed. Reading frees
// points that the record owns: begin with corvane_palette_init and end with corvane_palette_free; it gives
// CORVANE_ERROR_ARGUMENT for a label without a palette.
CORVANE_C_API CorvaneStatus corvane_scene_set_palette(CorvaneScene* scene, int32_t label, const KsPalette* palette);
CORVANE_C_API CorvaneStatus corvane_scene_get_palette(CorvaneScene* scene, int32_t label, KsPalette* palette);
CORVANE_C_API CorvaneStatus corvane_scene_remove_palette(CorvaneScene* scene, int32_t label);

// A view from outside along parallel rays. The camera starts on one side of the patient and is then turned about the
// volume's centre: the eye to its right, then upwards, then the camera about its viewing direction.
enum
{
    CORVANE_FROM_FRONT = 0, // anterior; the head at the top, as in the next three
    CORVANE_FROM_BACK = 1,
    CORVANE_FROM_LEFT = 2, // the patient's left
    CORVANE_FROM_RIGHT = 3,
    CORVANE_FROM_HEAD = 4, // the front at the top, as in the next one
    CORVANE_FROM_FEET = 5
};

// A standard view, then turns of the camera: to its right, upwards, and about its line of sight.
typedef struct CorvaneView
{
    int32_t from; // one of the six
    float right;  // radians
    float up;     // radians
    float screen; // radians
    float extent; // how much is shown: 1 all of the volume, 0.5 half of that, so twice as large; 1e-6 to 1e6
} CorvaneView;

// The plane of a view's image of rows * columns pixels.
CORVANE_C_API CorvaneStatus corvane_scene_view_plane(CorvaneScene* scene, const CorvaneView* view, uint32_t rows,
                                                     uint32_t columns, PnImageParam* plane);

// A shaded volume rendering along the normal of a plane (row direction x column direction), and a perspective rendering
// from an eye point. Pixels are as in PnImageRGB, 0 where nothing shows.
//   viewAngleDegrees  full vertical opening angle, limited to 5 to 175
//   plane             of an endoscopy: receives the geometry of the image; may be NULL
CORVANE_C_API CorvaneStatus corvane_scene_render(CorvaneScene* scene, const PnImageParam* plane, uint32_t* pixels,
                                                 size_t capacity);
CORVANE_C_API CorvaneStatus corvane_scene_endoscopy(CorvaneScene* scene, const KsViewPoint* view,
                                                    float viewAngleDegrees, uint32_t rows, uint32_t columns,
                                                    uint32_t* pixels, size_t capacity, PnImageParam* plane);

// Which value along a ray a projection shows.
enum
{
    CORVANE_MAXIMUM = 0,
    CORVANE_MEAN = 1,
    CORVANE_MINIMUM = 2
};

// Projections along the normal of a plane; -1024 for a ray that meets nothing. _project goes from the plane through the
// volume, and leaves out cut voxels, voxels of labels that have a palette and are not visible, and what lies outside
// the visible box. _slab takes `thickness` mm (at least 0.1) with the plane in its middle, and shows every voxel.
CORVANE_C_API CorvaneStatus corvane_scene_project(CorvaneScene* scene, int32_t kind, const PnImageParam* plane,
                                                  int16_t* values, size_t capacity);
CORVANE_C_API CorvaneStatus corvane_scene_slab(CorvaneScene* scene, int32_t kind, const PnImageParam* plane,
                                               float thickness, int16_t* values, size_t capacity);

// Stored values on a plane, -1024 outside, and labels of the nearest voxel as corvane_scene_get_labels gives them, 0
// outside. Stored values end one to two voxels before the volume does, labels at its edge.
CORVANE_C_API CorvaneStatus corvane_scene_reslice(CorvaneScene* scene, const PnImageParam* plane, int16_t* values,
                                                  size_t capacity);
CORVANE_C_API CorvaneStatus corvane_scene_reslice_labels(CorvaneScene* scene, const PnImageParam* plane,
                                                         uint8_t* labels, size_t capacity);

// The three reconstruction planes, as EngineMPR has them: their state, turning the two others about the normal of one,
// the standard planes again, and the plane of the image that covers the volume.
CORVANE_C_API CorvaneStatus corvane_scene_get_mpr(CorvaneScene* scene, KsMPRParam* planes);
CORVANE_C_API CorvaneStatus corvane_scene_set_mpr(CorvaneScene* scene, const KsMPRParam* planes);
CORVANE_C_API CorvaneStatus corvane_scene_rotate_mpr(CorvaneScene* scene, KsMPRType type, float angle);
CORVANE_C_API CorvaneStatus corvane_scene_reset_mpr(CorvaneScene* scene);
CORVANE_C_API CorvaneStatus corvane_scene_mpr_plane(CorvaneScene* scene, KsMPRType type, PnImageParam* plane);

// Which side of a polygon is cut away.
enum
{
    CORVANE_INSIDE = 0,
    CORVANE_OUTSIDE = 1
};

// Cuts away every voxel whose centre projects, along the normal of a plane, inside or outside of a polygon. Only voxels
// of visible labels that are not cut yet are taken. The last point is joined to the first; where the outline crosses
// itself a place is inside when a line from it to far away crosses the outline an odd number of times.
//   points      pairs of column and row, fractions allowed; (0, 0) is the centre of the first pixel
//   pointCount  pairs, 3 to 2^16
//   cutCount    receives how many voxels were cut; may be NULL. A cut of none is no step of the history.
CORVANE_C_API CorvaneStatus corvane_scene_cut_polygon(CorvaneScene* scene, const PnImageParam* plane,
                                                      const double* points, size_t pointCount, int32_t side,
                                                      uint64_t* cutCount);

// Cuts away every voxel of a visible label whose byte is not 0; exactly one byte per voxel.
CORVANE_C_API CorvaneStatus corvane_scene_cut_selection(CorvaneScene* scene, const uint8_t* selection, size_t count,
                                                        uint64_t* cutCount);

// Gives back every voxel that is cut away, whatever its label: a step like a cut.
CORVANE_C_API CorvaneStatus corvane_scene_restore(CorvaneScene* scene, uint64_t* restoredCount);

// The last step back, and forward again until a new step; CORVANE_ERROR_NO_STEP when there is none. A step is kept
// as runs of voxels: at most 1 byte per voxel of the volume, usually some bytes per row of voxels on the outline.
CORVANE_C_API CorvaneStatus corvane_scene_undo(CorvaneScene* scene);
CORVANE_C_API CorvaneStatus corvane_scene_redo(CorvaneScene* scene);

// How many steps can be undone and redone, and the bytes that they take; each may be NULL.
CORVANE_C_API CorvaneStatus corvane_scene_get_history(CorvaneScene* scene, size_t* undoable, size_t* redoable,
                                                      size_t* bytes);

// The most bytes that the history may take, 2^28 at first. Beyond it the oldest steps are forgotten, which leaves what
// they cut as it is; a step that does not fit alone is done, but cannot be undone and empties the history. 0: no undo.
CORVANE_C_API CorvaneStatus corvane_scene_set_history_limit(CorvaneScene* scene, size_t bytes);

#endif
