// Draws samples on a 2D canvas through a table: the way for machines without a graphics processor,
// where it is three times as fast as WebGL in software.

const MARKS = [0, 0xff40b4ff, 0xffff4ff0]; // nothing, clips (amber), wraps (magenta); ABGR

/** What the 65536 or 256 values of a sample become: opaque grey. */
function tableOf(tone, bytes, bits) {
  const table = new Uint32Array(bytes === 2 ? 4096 : 256);
  for (let i = 0; i < table.length; ++i) {
    // Levels are those of the recording: 8-bit pictures of 12-bit recordings have its upper ones.
    const level = bytes === 2 || bits === 8 ? i : i * 16;
    const linear = Math.min(Math.max((level - tone.low) / Math.max(tone.high - tone.low, 1), 0), 1);
    const grey = Math.round(255 * linear ** (1 / tone.gamma));
    table[i] = 0xff000000 | (grey << 16) | (grey << 8) | grey;
  }
  return table;
}

const IDENTITY = Uint32Array.from({ length: 256 }, (_, i) => 0xff000000 | (i << 16) | (i << 8) | i);

export class Painter2D {
  constructor(canvas) {
    this.canvas = canvas;
    this.context = canvas.getContext('2d', { alpha: false, willReadFrequently: true });
    this.key = '';
  }

  table(picture, tone) {
    if (picture.toned) return IDENTITY;
    const key = `${tone.low} ${tone.high} ${tone.gamma} ${picture.bytes} ${picture.bits}`;
    if (key !== this.key) {
      this.key = key;
      this.made = tableOf(tone, picture.bytes, picture.bits);
    }
    return this.made;
  }

  /** Which column (or row) of the picture each pixel of the canvas shows; -1 beside it. */
  static indices(count, from, scale, first, size, outSize) {
    const indices = new Int32Array(count);
    for (let i = 0; i < count; ++i) {
      const at = from + (i + 0.5) / scale - first;
      indices[i] = at < 0 || at >= size ? -1 : Math.min(outSize - 1, Math.floor(at * outSize / size));
    }
    return indices;
  }

  draw(picture, geometry, tone) {
    const { width, height } = this.canvas;
    if (!this.image || this.image.width !== width || this.image.height !== height) {
      this.image = this.context.createImageData(width, height);
      this.pixels = new Uint32Array(this.image.data.buffer);
    }
    const [left, top, inWidth, inHeight] = picture.cut;
    const columns = Painter2D.indices(width, geometry.x, geometry.scale, left, inWidth, picture.width);
    const rows = Painter2D.indices(height, geometry.y, geometry.scale, top, inHeight, picture.height);
    this.fill(picture, columns, rows, this.table(picture, tone));
    if (picture.marks) this.mark(picture, columns, rows);
    this.context.putImageData(this.image, 0, 0);
  }

  fill(picture, columns, rows, table) {
    const { samples } = picture;
    const shift = picture.bytes === 2 ? 4 : 0;
    const { pixels } = this;
    const width = columns.length;
    let begin = 0, end = width;
    while (begin < end && columns[begin] < 0) ++begin;
    while (end > begin && columns[end - 1] < 0) --end;
    for (let y = 0; y < rows.length; ++y) {
      const out = y * width;
      if (rows[y] < 0) { pixels.fill(0xff000000, out, out + width); continue; }
      if (y > 0 && rows[y] === rows[y - 1]) { pixels.copyWithin(out, out - width, out); continue; }
      const row = rows[y] * picture.width;
      pixels.fill(0xff000000, out, out + begin);
      for (let x = begin; x < end; ++x) pixels[out + x] = table[samples[row + columns[x]] >> shift];
      pixels.fill(0xff000000, out + end, out + width);
    }
  }

  mark(picture, columns, rows) {
    for (let y = 0; y < rows.length; ++y) {
      if (rows[y] < 0) continue;
      for (let x = 0; x < columns.length; ++x) {
        const mark = columns[x] < 0 ? 0 : picture.marks[rows[y] * picture.width + columns[x]];
        if (mark !== 0) this.pixels[y * columns.length + x] = MARKS[mark];
      }
    }
  }

  clear() {
    this.context.fillStyle = '#000';
    this.context.fillRect(0, 0, this.canvas.width, this.canvas.height);
  }
}
