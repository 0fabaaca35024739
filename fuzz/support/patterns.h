// Structured adversarial images for the flood fills and Canny: long thin
// paths (mazes, spirals, serpentines) that make a fill or the edge tracking
// walk every pixel one by one, and checkerboards and stripes that give the
// most seeds and segments. A pattern is a grid of cells: 0 a wall, k > 0
// the k-th cell along the path (so a value rising by one per step makes a
// gradient fill follow the whole path).
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "support/random.h"

namespace orufuzz {

enum class Pattern { Maze, Spiral, Serpentine, Checkerboard, Stripes, Diagonals, Dots, Full, kCount };

inline std::vector<int> make_pattern(Pattern kind, int w, int h, uint64_t seed) {
    std::vector<int> cell(static_cast<size_t>(w > 0 && h > 0 ? w * h : 0), 0);
    if (cell.empty()) return cell;
    auto at = [&](int x, int y) -> int& { return cell[static_cast<size_t>(y) * w + x]; };
    int order = 0;
    orutest::Rng rng(seed);
    switch (kind) {
    case Pattern::Maze: {
        // Depth-first carving over the even cells: one path of width 1
        // through walls of width 1, every corridor a dead end to backtrack.
        std::vector<int> stack{0};
        at(0, 0) = ++order;
        while (!stack.empty()) {
            const int x = stack.back() % w, y = stack.back() / w;
            static const int dx[] = {2, 0, -2, 0}, dy[] = {0, 2, 0, -2};
            int options[4], n = 0;
            for (int d = 0; d < 4; ++d) {
                const int nx = x + dx[d], ny = y + dy[d];
                if (nx >= 0 && ny >= 0 && nx < w && ny < h && !at(nx, ny)) options[n++] = d;
            }
            if (!n) {
                stack.pop_back();
                continue;
            }
            const int d = options[rng.next() % n];
            at(x + dx[d] / 2, y + dy[d] / 2) = ++order;
            at(x + dx[d], y + dy[d]) = ++order;
            stack.push_back((y + dy[d]) * w + x + dx[d]);
        }
        break;
    }
    case Pattern::Spiral: {
        // A square spiral inwards from the top-left corner, one wall between
        // its turns.
        int x0 = 0, y0 = 0, x1 = w - 1, y1 = h - 1;
        int x = 0, y = 0;
        while (x0 <= x1 && y0 <= y1) {
            for (x = x0; x <= x1; ++x) at(x, y0) = ++order;
            for (y = y0 + 1; y <= y1; ++y) at(x1, y) = ++order;
            if (y1 > y0)
                for (x = x1 - 1; x >= x0; --x) at(x, y1) = ++order;
            if (x1 > x0)
                for (y = y1 - 1; y >= y0 + 2; --y) at(x0, y) = ++order;
            if (x0 + 1 < w && y0 + 2 < h && x0 + 2 <= x1 - 2) at(x0 + 1, y0 + 2) = ++order;
            x0 += 2;
            y0 += 2;
            x1 -= 2;
            y1 -= 2;
        }
        break;
    }
    case Pattern::Serpentine:
        // Rows of path joined at alternate ends, walls between them.
        for (int y = 0; y < h; y += 2) {
            const bool right = (y / 2) % 2 == 0;
            for (int i = 0; i < w; ++i) at(right ? i : w - 1 - i, y) = ++order;
            if (y + 1 < h) at(right ? w - 1 : 0, y + 1) = ++order;
        }
        break;
    case Pattern::Checkerboard:
        for (int y = 0; y < h; ++y)
            for (int x = 0; x < w; ++x) at(x, y) = (x + y) & 1 ? ++order : 0;
        break;
    case Pattern::Stripes: {
        const bool rows = rng.next() & 1;
        for (int y = 0; y < h; ++y)
            for (int x = 0; x < w; ++x) at(x, y) = ((rows ? y : x) & 1) ? 0 : ++order;
        break;
    }
    case Pattern::Diagonals:
        for (int y = 0; y < h; ++y)
            for (int x = 0; x < w; ++x) at(x, y) = (x + 2 * y) % 3 == 0 ? ++order : 0;
        break;
    case Pattern::Dots:
        for (int y = 0; y < h; ++y)
            for (int x = 0; x < w; ++x) at(x, y) = rng.next() % 3 == 0 ? ++order : 0;
        break;
    default:
        for (int& c : cell) c = ++order;
        break;
    }
    return cell;
}

}  // namespace orufuzz
