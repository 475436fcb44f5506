// The pictures side by side: which ones there are, where they are zoomed to, and the mouse on them.

import { Geometry } from './geometry.js';
import { Pane } from './pane.js';
import { baseName } from './text.js';

export class Panes {
  /** @param on what is done: cursor(x, y), choose(x, y), box(region), moved(). */
  constructor(state, amplify, on) {
    Object.assign(this, { state, amplify, on, list: [], geometry: new Geometry(), extra: null });
    this.box = document.getElementById('panes');
    this.frames = [];
    new ResizeObserver(() => this.resize()).observe(this.box);
  }

  /** As many as `show` and the recordings ask for. */
  arrange() {
    for (const pane of this.list) pane.remove();
    const { show, recordings } = this.state;
    const kinds = show === 'side' ? ['original', 'reference', 'amplified'] : [show];
    this.list = recordings.flatMap((recording) => kinds.map(
      (kind) => new Pane(this.box, recording, kind, this.state.paint)));
    for (const pane of this.list) this.listen(pane);
    this.resize();
  }

  resize() {
    let changed = false;
    for (const pane of this.list) changed = pane.resize() || changed;
    if (!changed || this.list.length === 0) return;
    if (this.geometry.fitted) this.fit();
    else this.draw();
  }

  get size() { return this.state.recordings[0]; }

  fit() {
    const { canvas } = this.list[0];
    this.geometry.fit(this.size.width, this.size.height, canvas.width, canvas.height);
    this.moved();
  }

  one() {
    const { canvas } = this.list[0];
    const centre = this.geometry.sampleAt(canvas.width / 2, canvas.height / 2);
    this.geometry.scale = 1;
    this.geometry.centre(...(this.geometry.fitted ? [this.size.width / 2, this.size.height / 2] : centre), canvas.width, canvas.height);
    this.geometry.fitted = false;
    this.moved();
  }

  zoom(factor, at) {
    const { canvas } = this.list[0];
    this.geometry.zoom(factor, ...(at ?? [canvas.width / 2, canvas.height / 2]));
    this.moved();
  }

  pan(x, y) {
    this.geometry.pan(x, y);
    this.moved();
  }

  moved() {
    const percent = this.geometry.scale * 100;
    document.getElementById('zoom').textContent = `${percent >= 10 ? Math.round(percent) : percent.toFixed(1)} %`;
    this.draw();
    this.on.moved();
  }

  /** @param frames one of each recording, or null. @param toned whether they are for the screen. */
  show(frames, toned) {
    const { recordings } = this.state;
    for (const pane of this.list) {
      const { recording } = pane;
      const frame = frames[recordings.indexOf(recording)];
      const { pictures, cut } = frame?.asked ?? {};
      const pictureOf = (kind) => frame?.pictures[pictures.indexOf(kind)];
      const samples = pictureOf(pane.kind);
      pane.name(this.captionOf(pane));
      if (!samples) { pane.show(frame, null); continue; }
      const marks = pane.kind === 'amplified' ? pictureOf('marks') : undefined;
      pane.show(frame, { samples, width: frame.width, height: frame.height, bytes: frame.bytes,
        bits: recording.bits, cut: cut ?? [0, 0, recording.width, recording.height], toned, marks });
    }
    this.draw();
  }

  captionOf(pane) {
    const name = this.state.recordings.length > 1 ? `${baseName(pane.recording.name)} · ` : '';
    return name + this.amplify.caption(pane.kind);
  }

  /** What the canvas needs of a frame while playing, or null. */
  cutOf(recording) {
    const { canvas } = this.list[0];
    return this.geometry.cutout(recording.width, recording.height, canvas.width, canvas.height)
      ?? [0, 0, recording.width, recording.height, 1, 1];
  }

  draw() {
    for (const pane of this.list) pane.draw(this.geometry, this.state.tone);
    this.drawOver();
  }

  drawOver() {
    for (const pane of this.list) {
      pane.drawOver(this.geometry, this.state.region, this.state.cursor, pane.kind === 'original' || this.list.length === 1 ? this.extra : null);
    }
  }

  listen(pane) {
    const { canvas } = pane;
    const at = (event) => {
      const ratio = canvas.width / canvas.clientWidth;
      return [event.offsetX * ratio, event.offsetY * ratio];
    };
    let from = null; // where the button went down
    let boxing = false;
    canvas.addEventListener('pointerdown', (event) => {
      canvas.focus({ preventScroll: true });
      canvas.setPointerCapture(event.pointerId);
      from = at(event);
      boxing = event.shiftKey;
      this.dragged = false;
    });
    canvas.addEventListener('pointermove', (event) => {
      const now = at(event);
      this.on.cursor(pane, ...this.geometry.sampleAt(...now));
      if (!from || !(event.buttons & 1)) return;
      const far = Math.hypot(now[0] - from[0], now[1] - from[1]) > 3;
      this.dragged = this.dragged || far;
      if (!this.dragged) return;
      if (boxing) {
        this.on.box(boxOf(this.geometry.sampleAt(...from), this.geometry.sampleAt(...now), this.size), false);
      } else {
        this.pan(now[0] - from[0], now[1] - from[1]);
        from = now;
      }
    });
    canvas.addEventListener('pointerup', (event) => {
      const now = at(event);
      if (from && !this.dragged) this.on.choose(...this.geometry.sampleAt(...now));
      else if (from && boxing) {
        this.on.box(boxOf(this.geometry.sampleAt(...from), this.geometry.sampleAt(...now), this.size), true);
      }
      from = null;
    });
    canvas.addEventListener('wheel', (event) => {
      event.preventDefault();
      this.zoom(event.deltaY < 0 ? 1.25 : 0.8, at(event));
    }, { passive: false });
  }
}

/** The box between two samples, both included, as far as the picture has it. */
export function boxOf([x1, y1], [x2, y2], { width, height }) {
  const clamp = (value, most) => Math.min(Math.max(value, 0), most - 1);
  const left = clamp(Math.min(x1, x2), width), right = clamp(Math.max(x1, x2), width);
  const top = clamp(Math.min(y1, y2), height), bottom = clamp(Math.max(y1, y2), height);
  return [left, top, right - left + 1, bottom - top + 1];
}
