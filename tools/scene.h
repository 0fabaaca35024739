// The built-in synthetic scene: a gradient background, shapes, a textured
// patch and a disc that moves across the frames. Deterministic, so the demo
// and the benchmarks see the same natural-looking content every run.
#pragma once

#include "image.h"

namespace orucv_tool {

constexpr int kSceneWidth = 640;
constexpr int kSceneHeight = 480;
constexpr int kSceneFrames = 8;

// Frame `frame` (0..kSceneFrames-1, later frames keep moving) as gray.
Image render_scene(int width, int height, int frame);
// The same frame in colour.
Image render_scene_rgb(int width, int height, int frame);

}  // namespace orucv_tool
