// The bar below the pictures: where one is, what is lost, which piece is marked.

import { getJson } from './api.js';

export class Timeline {
  /** @param go (place) -> shows it. */
  constructor(box, state, go) {
    Object.assign(this, { box, state, go, canvas: box.querySelector('canvas') });
    const seek = (event) => go(this.placeAt(event.clientX));
    box.addEventListener('pointerdown', (event) => {
      box.setPointerCapture(event.pointerId);
      seek(event);
    });
    box.addEventListener('pointermove', (event) => { if (event.buttons & 1) seek(event); });
    this.search();
  }

  get recording() { return this.state.recordings[0]; }
  get length() { return Math.max(this.recording.places, 1); }

  placeAt(clientX) {
    const { left, width } = this.box.getBoundingClientRect();
    const share = Math.min(Math.max((clientX - left) / width, 0), 1);
    return Math.min(this.length - 1, Math.floor(share * this.length));
  }

  /** Has every record looked at, a little at a time, so that pictures do not wait for it. */
  async search() {
    for (const recording of this.state.recordings) {
      recording.lost ??= [];
      recording.searched ??= 0;
      const index = this.state.recordings.indexOf(recording);
      while (recording.searched < recording.places) {
        const found = await getJson('lost', { recording: index, from: recording.searched });
        recording.lost.push(...found.lost);
        if (found.searched <= recording.searched) break;
        recording.searched = found.searched;
        this.draw();
        await new Promise((resolve) => { setTimeout(resolve, 40); });
      }
    }
  }

  /** The next lost place behind (or before) the present one; null where there is none. */
  lostBeside(direction) {
    const { place } = this.state;
    const starts = this.recording.lost.map(([from]) => from);
    return direction > 0 ? starts.find((from) => from > place) ?? null
      : starts.findLast((from) => from < place) ?? null;
  }

  draw() {
    const ratio = window.devicePixelRatio || 1;
    const width = Math.max(1, Math.round(this.box.clientWidth * ratio));
    const height = Math.max(1, Math.round(this.box.clientHeight * ratio));
    if (this.canvas.width !== width || this.canvas.height !== height) Object.assign(this.canvas, { width, height });
    const context = this.canvas.getContext('2d');
    const at = (place) => place / this.length * width;
    const bar = (from, to, colour, top, bottom, least = 0) => {
      context.fillStyle = colour;
      context.fillRect(at(from), top * height, Math.max(at(to) - at(from), least), (bottom - top) * height);
    };
    context.clearRect(0, 0, width, height);
    bar(0, this.length, '#22272e', 0.3, 0.8);
    bar(0, this.recording.searched, '#2d343d', 0.3, 0.8);
    const { in: first, out: last } = this.state;
    if (first !== null || last !== null) bar(first ?? 0, (last ?? this.length - 1) + 1, '#1d5573', 0.3, 0.8);
    bar(0, this.state.place, '#4cc2ff66', 0.3, 0.8);
    for (const [from, to] of this.recording.lost) bar(from, to + 1, '#ff5d5d', 0.08, 0.92, 2 * ratio);
    context.fillStyle = '#fff';
    context.fillRect(Math.min(at(this.state.place + 0.5) - ratio, width - 2 * ratio), 0, 2 * ratio, height);
    this.box.setAttribute('aria-valuemax', this.length - 1);
    this.box.setAttribute('aria-valuenow', this.state.place);
    const lost = this.recording.lost.reduce((sum, [from, to]) => sum + to - from + 1, 0);
    this.box.setAttribute('aria-valuetext', `frame ${this.state.place} of ${this.length}, ${lost} lost`);
    this.box.title = lost ? `${lost} lost frame${lost === 1 ? '' : 's'} (red); n and p go to them` : '';
  }
}
