// SPDX-License-Identifier: MIT
// Which rows of a long list are seen. Browsers end an element at some 17 million pixels, so that beyond
// that the scroll bar stands for more rows than it has pixels.

export const kRowHeight = 34; // pixels
const kMostPixels = 15_000_000;

export interface Geometry {
  /** Height of all that is scrolled, in pixels. */
  height: number;
  /** The row at the top edge, with the part of it that is above, for a place of the scroll bar. */
  rowAt(scrollTop: number): number;
  /** The place of the scroll bar at which that row is at the top edge. */
  placeOf(row: number): number;
}

/** Of `total` rows in a window of `view` pixels. */
export function geometryOf(total: number, view: number): Geometry {
  const natural = total * kRowHeight;
  const height = Math.min(natural, kMostPixels);
  const stretch = natural > height ? (natural - view) / (height - view) : 1;
  return {
    height,
    rowAt: (scrollTop) => Math.max(0, scrollTop * stretch) / kRowHeight,
    placeOf: (row) => (row * kRowHeight) / stretch,
  };
}
