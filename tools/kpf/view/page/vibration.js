// From picture to vibration: the waveform of a region, its spectrum, its peaks; a map of them all.

import { getJson } from './api.js';
import { fillPlot, plotOn } from './plots.js';
import { hertz } from './text.js';

const $ = (id) => document.getElementById(id);

/** From black over blue and orange to white, each step brighter than the one before. */
function heat(share) {
  const channel = (from, to) => Math.round(255 * Math.min(Math.max((share - from) / (to - from), 0), 1));
  return [channel(0.25, 0.75), channel(0.45, 0.95), share < 0.4 ? channel(0, 0.4) * 0.6 : channel(0.4, 1.6) * 0.6];
}

export class Vibration {
  constructor(state, found, amplify, panes) {
    Object.assign(this, { state, amplify, panes, scale: found.scale, result: null, asked: 0, mapsAsked: 0 });
    this.there = found.vibration === true && state.recordings[0].rate > 0;
    if (!this.there) return;
    $('vibration').hidden = false;
    $('maps').hidden = found.map !== true;
    this.waveform = plotOn($('waveform'), 's', '', (seconds) => this.goTo(seconds));
    this.spectrum = plotOn($('spectrum'), 'Hz', '', (frequency) => this.near(frequency));
    $('analyse').addEventListener('click', () => this.analyse());
    $('signal').addEventListener('change', () => this.draw());
    $('map-kind').addEventListener('change', () => this.map());
    panes.extra = (context, geometry) => this.drawMap(context, geometry);
  }

  tell(text) { $('vibration-note').textContent = text; }

  /** A region was chosen; analysing it is what one chooses it for. */
  choose(region) {
    if (region && this.there) this.analyse();
  }

  range() {
    const { in: from, out: to } = this.state;
    return { ...(from === null ? {} : { from }), ...(to === null ? {} : { to }) };
  }

  async analyse() {
    const { region } = this.state;
    if (!this.there) return;
    if (!region) return this.tell('Click on something that moves, or drag a box around it with Shift held. Nothing seems to move? A map shows what swings.');
    const asked = ++this.asked;
    this.tell('At work …');
    try {
      const result = await getJson('vibration', { recording: 0, box: region, ...this.range() });
      if (asked !== this.asked) return; // another region was chosen meanwhile
      this.result = result;
      this.onbox?.(result.box); // a click stands for the samples around it
      this.chooseSignal();
      this.draw();
      $('vibration').scrollIntoView({ block: 'nearest' }); // low windows end above it
    } catch (error) {
      if (asked === this.asked) this.tell(error.message);
    }
  }

  /** The axis along which it swings farthest, of those that show it; else brightness. */
  chooseSignal() {
    const { signals } = this.result;
    const [best] = ['x', 'y'].filter((axis) => signals[axis].quality.shown > 0.1 && signals[axis].peaks.length > 0)
      .sort((a, b) => signals[b].peaks[0].amplitude - signals[a].peaks[0].amplitude);
    $('signal').value = best ?? (signals.mean.peaks.length > 0 ? 'mean' : 'x');
  }

  /** Unit and factor of the values: millimetres where the scale is known. */
  unit() {
    if ($('signal').value === 'mean') return ['levels', 1];
    return this.scale > 0 ? ['mm', this.scale] : ['px', 1];
  }

  draw() {
    if (!this.result) return;
    $('plots').hidden = false;
    const { rate, first, box, frames, lost } = this.result;
    const { values, spectrum, peaks, quality } = this.result.signals[$('signal').value];
    const [unit, factor] = this.unit();
    fillPlot(this.waveform, values.map((y, i) => ({ x: (first + i) / rate, y: y * factor })), [], unit);
    fillPlot(this.spectrum, spectrum.amplitudes.map((y, i) => ({ x: i * spectrum.binWidth, y: y * factor })),
      peaks.map((peak) => ({ x: peak.frequency, y: peak.amplitude * factor })), unit);
    this.listPeaks(peaks, unit, factor);
    const parts = [`${box[2]} × ${box[3]} at ${box[0]}, ${box[1]}`, `${frames} frames`,
      `resolution ${hertz(spectrum.resolution)} Hz, up to ${hertz(spectrum.nyquist)} Hz`];
    if (lost > 0) parts.push(`${lost} lost, bridged`);
    if (quality) parts.push(`shows ${Math.round(quality.shown * 100)} % of this movement, ±${(quality.error * factor).toPrecision(2)} ${unit} a frame`);
    this.tell(`${parts.join(' · ')}.`);
  }

  listPeaks(peaks, unit, factor) {
    $('peaks').replaceChildren(...peaks.map((peak) => {
      const item = document.createElement('li'), button = document.createElement('button');
      button.type = 'button';
      button.textContent = `${hertz(peak.frequency)} Hz · ${(peak.amplitude * factor).toPrecision(2)} ${unit}`;
      button.title = 'click: amplify this';
      button.addEventListener('click', () => this.take(peak.frequency));
      item.append(button);
      return item;
    }));
  }

  take(frequency) {
    this.amplify.set({ frequency: Number(frequency.toPrecision(4)) });
    // A map of another frequency, or of all of them, would lie over what is to be seen now.
    if ($('map-kind').value === 'dominant') $('map-kind').value = '';
    this.map();
  }

  /** A click beside a peak means the peak. */
  near(frequency) {
    if (!this.result) return;
    const { peaks, spectrum } = this.result.signals[$('signal').value];
    const [closest] = peaks.map((peak) => peak.frequency)
      .sort((a, b) => Math.abs(a - frequency) - Math.abs(b - frequency));
    const reach = spectrum.nyquist * 0.03;
    if (closest !== undefined && Math.abs(closest - frequency) < reach) this.take(closest);
    else if (frequency > 0) this.take(frequency);
  }

  goTo(seconds) {
    if (this.result) this.onplace?.(Math.round(seconds * this.result.rate));
  }

  async map() {
    const kind = $('map-kind').value;
    const asked = ++this.mapsAsked;
    this.picture = null;
    $('map-range').textContent = '';
    if (kind) {
      this.tell('Looking at the whole picture …');
      try {
        const found = await getJson('map', { recording: 0, kind, frequency: this.state.frequency, ...this.range() });
        if (asked !== this.mapsAsked) return; // another map was chosen meanwhile
        this.picture = this.mapPicture(found, kind);
        this.tell(found.text);
      } catch (error) {
        this.tell(error.message);
      }
    }
    this.panes.drawOver();
  }

  /** Cells without a value stay clear. */
  mapPicture({ width, height, cell, values, most }, kind) {
    const image = new ImageData(width, height);
    values.forEach((value, i) => {
      if (value === null || most <= 0) return;
      const share = Math.min(value / most, 1);
      image.data.set([...heat(share), kind === 'energy' ? Math.round(235 * Math.sqrt(share)) : 200], 4 * i);
    });
    const canvas = document.createElement('canvas');
    Object.assign(canvas, { width, height });
    canvas.getContext('2d').putImageData(image, 0, 0);
    $('map-range').textContent = kind === 'energy' ? `bright: ${most.toPrecision(3)} levels` : `bright: ${hertz(most)} Hz`;
    return { canvas, width: width * cell, height: height * cell };
  }

  drawMap(context, geometry) {
    if (!this.picture) return;
    const [left, top] = geometry.canvasAt(0, 0);
    context.imageSmoothingEnabled = false;
    context.drawImage(this.picture.canvas, left, top, this.picture.width * geometry.scale, this.picture.height * geometry.scale);
  }
}
