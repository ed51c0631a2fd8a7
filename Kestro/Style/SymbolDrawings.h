#pragma once

class QPainter;

/// Glyphs that the icon package lacks, drawn in black on a box of 16 by 16 in the package's manner (lines 1 wide).
namespace kestro::drawings {

void splitRectangle(QPainter& painter);

/// The four corners of a finder's frame, round a smaller glyph.
void frameCorners(QPainter& painter);

/// The filling of a battery whose outline comes from the package.
void batteryCharge(QPainter& painter);

void pointerWithRays(QPainter& painter);

/// The lines of writing on a note whose outline comes from the package.
void noteLines(QPainter& painter);

} // namespace kestro::drawings
