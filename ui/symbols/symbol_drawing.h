// SPDX-License-Identifier: MIT
// A symbol as strokes and fills on a grid of 16 by 16. The tables are made from the SVG files when
// the program is built.
#pragma once

#include <span>
#include <string_view>

namespace tarnwick {

/// One point of a path.
struct SymbolPoint {
    enum class Kind : unsigned char {
        /// Begins a new line.
        move,
        line,
        /// Two control points and an end point, in three successive entries.
        curve,
        curveData,
    };
    Kind kind;
    float x;
    float y;
};

/// One path, filled or stroked.
struct SymbolPart {
    enum class Ink : unsigned char {
        /// The colour that the symbol is drawn in.
        current,
        /// Marks cut out of filled symbols.
        white,
    };
    std::span<const SymbolPoint> points;
    Ink ink;
    /// Grid units. 0 means that the path is filled, with the odd-even rule if `oddEven` is set.
    /// Strokes have round caps and joins.
    float strokeWidth;
    bool oddEven;
};

struct SymbolDrawing {
    std::string_view name;
    std::span<const SymbolPart> parts;
};

/// All symbols; the name identifies each one.
std::span<const SymbolDrawing> symbolDrawings();

}  // namespace tarnwick
