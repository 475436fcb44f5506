// Black, white and gamma, by hand and by what the picture holds; the histogram; the region's figures.

const $ = (id) => document.getElementById(id);
const SHARE = 0.002; // of the samples that automatic lets go black, and white

/** How often each of 256 bins of levels occurs in the samples of a region. */
export function histogramOf(picture, [x, y, width, height]) {
  const bins = new Uint32Array(256);
  const shift = picture.bytes === 2 ? 8 : 0;
  for (let row = y; row < y + height; ++row) {
    const from = row * picture.width + x;
    for (let i = from; i < from + width; ++i) ++bins[picture.samples[i] >> shift];
  }
  return bins;
}

/** Mean and standard deviation of a region, in levels of the recording. */
export function figuresOf(picture, [x, y, width, height]) {
  const shift = picture.bytes === 2 ? 4 : 0;
  let sum = 0, squares = 0;
  for (let row = y; row < y + height; ++row) {
    const from = row * picture.width + x;
    for (let i = from; i < from + width; ++i) {
      const value = picture.samples[i] >> shift;
      sum += value;
      squares += value * value;
    }
  }
  const count = width * height;
  const mean = sum / count;
  return { mean, deviation: Math.sqrt(Math.max(squares / count - mean * mean, 0)) };
}

export class Brightness {
  /** @param changed () -> draws again. */
  constructor(state, bits, changed) {
    Object.assign(this, { state, changed, top: 2 ** bits - 1, bins: null, picture: null });
    for (const name of ['low', 'high']) {
      $(name).max = this.top;
      $(name).addEventListener('change', () => this.set({ [name]: Number($(name).value) }));
    }
    $('gamma').addEventListener('input', () => this.set({ gamma: Number($('gamma').value) }));
    $('tone-auto').addEventListener('click', () => this.automatic());
    $('tone-full').addEventListener('click', () => this.full());
    $('histogram').addEventListener('pointerdown', (event) => this.drag(event));
    $('histogram').addEventListener('pointermove', (event) => { if (event.buttons & 1) this.drag(event); });
    this.set({}, true);
  }

  set(values, quiet) {
    const { tone } = this.state;
    Object.assign(tone, values);
    tone.low = Math.min(Math.max(Math.round(tone.low) || 0, 0), this.top - 1);
    tone.high = Math.min(Math.max(Math.round(tone.high) || this.top, tone.low + 1), this.top);
    $('low').value = tone.low;
    $('high').value = tone.high;
    $('gamma').value = tone.gamma;
    $('gamma-value').textContent = Number(tone.gamma).toFixed(2);
    this.drawHistogram();
    if (!quiet) this.changed();
  }

  full() { this.set({ low: 0, high: this.top, gamma: 1 }); }

  automatic() {
    if (!this.bins) return;
    const total = this.bins.reduce((sum, count) => sum + count, 0);
    const edge = (bins) => {
      let sum = 0;
      return bins.findIndex((count) => (sum += count) > total * SHARE);
    };
    const unit = (this.top + 1) / 256;
    const low = edge(this.bins), high = 255 - edge(this.bins.toReversed());
    this.set({ low: low * unit, high: (high + 1) * unit - 1 });
  }

  drag(event) {
    const { left, width } = $('histogram').getBoundingClientRect();
    const level = (event.clientX - left) / width * this.top;
    const { low, high } = this.state.tone;
    this.set(Math.abs(level - low) < Math.abs(level - high) ? { low: level } : { high: level });
  }

  /** @param picture with all its bits. */
  take(picture, region) {
    this.picture = picture;
    const all = [0, 0, picture.width, picture.height];
    this.bins = histogramOf(picture, region ?? all);
    const { mean, deviation } = figuresOf(picture, region ?? all);
    $('region-name').textContent = region ? 'region' : 'picture';
    $('region-size').textContent = region ? `${region[2]} × ${region[3]} at ${region[0]}, ${region[1]}`
      : `${picture.width} × ${picture.height}`;
    $('region-mean').textContent = mean.toFixed(3);
    $('region-deviation').textContent = deviation.toFixed(3);
    this.drawHistogram();
  }

  drawHistogram() {
    const canvas = $('histogram');
    const context = canvas.getContext('2d');
    const { width, height } = canvas;
    context.clearRect(0, 0, width, height);
    if (this.bins) {
      const most = Math.log1p(Math.max(...this.bins));
      context.fillStyle = '#7f8995';
      this.bins.forEach((count, i) => {
        const bar = Math.log1p(count) / most * (height - 2);
        context.fillRect(i * width / 256, height - bar, width / 256 + 0.3, bar);
      });
    }
    const { low, high, gamma } = this.state.tone;
    const at = (level) => level / this.top * width;
    context.strokeStyle = '#4cc2ff';
    context.lineWidth = 1.5;
    context.beginPath();
    context.moveTo(0, height - 1);
    for (let i = 0; i <= 40; ++i) {
      context.lineTo(at(low + (high - low) * i / 40), height - 1 - (i / 40) ** (1 / gamma) * (height - 2));
    }
    context.lineTo(width, 1);
    context.stroke();
  }
}
