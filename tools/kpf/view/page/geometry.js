// Where the picture lies on the canvas. Knows nothing of the page.

const LARGEST = 96; // canvas pixels a sample

/** The canvas shows the samples from (x, y) on, `scale` of its pixels to each. */
export class Geometry {
  constructor() {
    Object.assign(this, { scale: 1, x: 0, y: 0, fitted: true });
  }

  /** All of it, in the middle; enlarged only by whole numbers, so that all samples are alike. */
  fit(width, height, canvasWidth, canvasHeight) {
    const scale = Math.min(canvasWidth / width, canvasHeight / height);
    this.scale = scale >= 1 ? Math.min(Math.floor(scale), LARGEST) : Math.max(scale, 1e-3);
    this.centre(width / 2, height / 2, canvasWidth, canvasHeight);
    this.fitted = true;
  }

  /** Puts a place of the picture into the middle of the canvas, samples on whole pixels. */
  centre(x, y, canvasWidth, canvasHeight) {
    this.x = Math.round((x - canvasWidth / 2 / this.scale) * this.scale) / this.scale;
    this.y = Math.round((y - canvasHeight / 2 / this.scale) * this.scale) / this.scale;
  }

  /** What lies under (canvasX, canvasY) stays there. */
  zoom(factor, canvasX, canvasY) {
    const x = this.x + canvasX / this.scale;
    const y = this.y + canvasY / this.scale;
    let scale = Math.min(Math.max(this.scale * factor, 0.02), LARGEST);
    if (scale > 1) scale = factor > 1 ? Math.ceil(scale) : Math.floor(scale);
    this.scale = scale;
    this.x = Math.round(x * scale - canvasX) / scale;
    this.y = Math.round(y * scale - canvasY) / scale;
    this.fitted = false;
  }

  pan(canvasX, canvasY) {
    this.x -= Math.round(canvasX) / this.scale;
    this.y -= Math.round(canvasY) / this.scale;
    this.fitted = false;
  }

  sampleAt(canvasX, canvasY) {
    return [Math.floor(this.x + canvasX / this.scale), Math.floor(this.y + canvasY / this.scale)];
  }

  canvasAt(x, y) {
    return [(x - this.x) * this.scale, (y - this.y) * this.scale];
  }

  /** The samples that the canvas shows, and at what size it wants them: [left, top, width, height,
   *  out width, out height], or null when none of them is on it. */
  cutout(width, height, canvasWidth, canvasHeight) {
    const left = Math.max(0, Math.floor(this.x));
    const top = Math.max(0, Math.floor(this.y));
    const right = Math.min(width, Math.ceil(this.x + canvasWidth / this.scale));
    const bottom = Math.min(height, Math.ceil(this.y + canvasHeight / this.scale));
    if (right <= left || bottom <= top) return null;
    const share = Math.min(1, this.scale);
    return [left, top, right - left, bottom - top,
      Math.max(1, Math.round((right - left) * share)), Math.max(1, Math.round((bottom - top) * share))];
  }
}
