// One picture on the page: canvas, caption, what is drawn over it.

import { STATE } from './api.js';
import { Painter2D } from './paint_2d.js';
import { openGl, PainterGl } from './paint_gl.js';
import { STATE_TEXT } from './text.js';

const VALUES_FROM = 34; // canvas pixels a sample, from which on its value is written into it

function element(name, className, parent) {
  const made = document.createElement(name);
  made.className = className;
  parent.append(made);
  return made;
}

export class Pane {
  /** @param how 'gl', '2d' or ''; the last chooses what is faster here. */
  constructor(parent, recording, kind, how) {
    Object.assign(this, { recording, kind, picture: null, frame: null });
    this.box = element('div', 'pane', parent);
    this.canvas = element('canvas', 'picture', this.box);
    this.canvas.tabIndex = 0;
    this.canvas.setAttribute('role', 'img');
    this.over = element('canvas', 'over', this.box);
    this.plate = element('div', 'lost', this.box);
    this.plate.hidden = true;
    this.caption = element('div', 'caption', this.box);
    const gl = how === '2d' ? null : openGl(this.canvas, how === 'gl');
    this.painter = gl ? new PainterGl(this.canvas, gl) : new Painter2D(this.canvas);
    this.box.dataset.painter = gl ? 'gl' : '2d';
  }

  /** Gives the canvases the pixels of the screen. @return whether that changed them. */
  resize() {
    const ratio = window.devicePixelRatio || 1;
    const width = Math.max(1, Math.round(this.box.clientWidth * ratio));
    const height = Math.max(1, Math.round(this.box.clientHeight * ratio));
    if (this.canvas.width === width && this.canvas.height === height) return false;
    for (const canvas of [this.canvas, this.over]) Object.assign(canvas, { width, height });
    return true;
  }

  /** @param picture samples, width, height, bytes, bits, cut, toned, marks; null for a lost frame. */
  show(frame, picture) {
    this.frame = frame;
    this.picture = picture;
    this.plate.hidden = frame?.state === STATE.there;
    if (!this.plate.hidden) this.sayWhy(frame);
    this.canvas.dataset.place = frame ? frame.place : '';
    this.canvas.dataset.state = frame ? frame.state : '';
  }

  /** Why there is no picture. */
  sayWhy(frame) {
    this.plate.classList.toggle('beyond', !frame);
    this.plate.textContent = frame ? `frame ${frame.place} is lost` : 'no frame here';
    element('small', '', this.plate).textContent = frame ? STATE_TEXT[frame.state]
      : 'before its first one, or behind its last';
  }

  name(text) {
    this.caption.textContent = text;
    this.canvas.setAttribute('aria-label', text);
  }

  draw(geometry, tone) {
    this.canvas.dataset.view = `${geometry.scale} ${geometry.x} ${geometry.y}`;
    if (this.picture) this.painter.draw(this.picture, geometry, tone);
    else this.painter.clear();
  }

  /** Region, cursor, single values, map. @param extra draws more, given context and geometry. */
  drawOver(geometry, region, cursor, extra) {
    const context = this.over.getContext('2d');
    context.clearRect(0, 0, this.over.width, this.over.height);
    if (extra) extra(context, geometry);
    if (geometry.scale >= VALUES_FROM && this.picture && !this.picture.toned) this.writeValues(context, geometry);
    if (region) this.frameBox(context, geometry, region, '#4cc2ff', 1.5);
    if (cursor) this.frameBox(context, geometry, [cursor[0], cursor[1], 1, 1], '#ffb84d', 1);
  }

  frameBox(context, geometry, [x, y, width, height], colour, line) {
    const [left, top] = geometry.canvasAt(x, y);
    context.strokeStyle = colour;
    context.lineWidth = line;
    const grow = geometry.scale * Math.max(width, height) < 6 ? 4 : 0; // a point stays visible
    context.strokeRect(left - grow, top - grow, width * geometry.scale + 2 * grow,
      height * geometry.scale + 2 * grow);
  }

  writeValues(context, geometry) {
    const { scale } = geometry;
    const [left, top] = geometry.sampleAt(0, 0);
    const [right, bottom] = geometry.sampleAt(this.over.width, this.over.height);
    context.font = `${Math.min(13, scale / 3.2)}px monospace`;
    context.textAlign = 'center';
    context.textBaseline = 'middle';
    context.lineJoin = 'round';
    context.lineWidth = 3;
    context.strokeStyle = '#101215'; // legible on light samples too
    context.fillStyle = '#8fdcff';
    for (let y = top; y <= bottom; ++y) {
      for (let x = left; x <= right; ++x) {
        const value = this.valueAt(x, y);
        if (value === null) continue;
        const [cx, cy] = geometry.canvasAt(x + 0.5, y + 0.5);
        context.strokeText(String(value), cx, cy);
        context.fillText(String(value), cx, cy);
      }
    }
  }

  /** The recorded value, or null beside the picture and while it plays. */
  valueAt(x, y) {
    const { picture } = this;
    if (!picture || picture.toned || x < 0 || y < 0 || x >= picture.width || y >= picture.height) return null;
    const sample = picture.samples[y * picture.width + x];
    return picture.bytes === 2 ? sample >> 4 : sample;
  }

  remove() { this.box.remove(); }
}
