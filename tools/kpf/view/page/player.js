// Gets frames and shows them: one when the place changes, or one after the other.

import { getFrames } from './api.js';
import { placeBeside, stepFor } from './moments.js';

const BATCH = 4;  // frames asked for at once while playing
const AHEAD = 3;  // requests under way, so that the server works while the page draws
const SCREEN = 60; // frames a second that any screen shows

export class Player {
  /**
   * @param state recordings, place, and how to play.
   * @param ask what to ask for: (recording, playing) -> values of the request.
   * @param show (place, [frame of each recording]) -> what the page does with them.
   * @param failed (error) -> how it tells the user.
   */
  constructor(state, ask, show, failed) {
    Object.assign(this, { state, ask, show, failed, playing: false, wanted: null, busy: false });
  }

  get places() { return this.state.recordings[0].places; }

  beside(recording, place) {
    return placeBeside(this.state.recordings[0], recording, place, this.state.together === 'time');
  }

  /** Shows a place with all its bits. Of places asked for meanwhile only the last one is fetched. */
  async go(place) {
    this.stop();
    this.wanted = Math.min(Math.max(place, 0), Math.max(this.places - 1, 0));
    this.state.place = this.wanted;
    if (this.busy) return;
    this.busy = true;
    try {
      while (this.wanted !== null && !this.playing) {
        const next = this.wanted;
        this.wanted = null;
        const frames = await this.fetch(next, 1, 1, false);
        if (!this.playing) this.show(next, frames[0], false);
      }
    } catch (error) {
      this.failed(error);
    } finally {
      this.busy = false;
    }
    if (this.wanted !== null && !this.playing) this.go(this.wanted);
  }

  /** The frames of `count` moments: for each the frame of every recording, null where it has none. */
  async fetch(place, count, step, playing, signal) {
    const { recordings } = this.state;
    const columns = await Promise.all(recordings.map(async (recording) => {
      const from = this.beside(recording, place);
      // By time, recordings of another rate go in other steps: frame by frame then.
      const straight = count === 1 || this.beside(recording, place + step) - from === step;
      const ask = (at, n) => (at < 0 || at >= recording.places ? Promise.resolve([])
        : getFrames({ ...this.ask(recording, playing), from: at, count: n, step }, signal));
      if (straight && from >= 0) return ask(from, count);
      const single = Array.from({ length: count }, (_, i) => ask(this.beside(recording, place + i * step), 1));
      return (await Promise.all(single)).map((frames) => frames[0]);
    }));
    const moments = Math.min(count, Math.ceil((this.places - place) / step));
    return Array.from({ length: moments }, (_, i) => columns.map((column) => column[i] ?? null));
  }

  stop() {
    if (!this.playing) return;
    this.playing = false;
    this.abort.abort();
    this.onchange?.();
  }

  toggle() {
    if (this.playing) {
      this.stop();
      this.go(this.state.place);
    } else {
      this.play();
    }
  }

  end() { return Math.min(this.state.out ?? Infinity, this.places - 1); }

  async play() {
    const first = this.state.place >= this.end() ? (this.state.in ?? 0) : this.state.place + 1;
    this.playing = true;
    this.abort = new AbortController();
    this.shown = 0;
    this.skipped = 0;
    this.onchange?.();
    const { abort } = this;
    try {
      await this.run(first, abort.signal);
    } catch (error) {
      if (!abort.signal.aborted) this.failed(error);
    }
    if (!abort.signal.aborted) {
      this.stop();
      this.go(this.state.place);
    }
  }

  /** Keeps requests ahead, and shows what they bring in order, none before its time. */
  async run(first, signal) {
    let next = first;
    let step = this.stepNow(SCREEN / 2);
    const queue = [];
    const began = performance.now();
    let due = began;
    while (!signal.aborted) {
      while (queue.length < AHEAD && next <= this.end()) {
        const count = Math.min(BATCH, Math.floor((this.end() - next) / step) + 1);
        const batch = this.fetch(next, count, step, true, signal);
        batch.catch(() => {});
        queue.push({ place: next, step, batch });
        next += count * step;
      }
      const part = queue.shift();
      if (!part) return;
      let place = part.place;
      for (const frames of await part.batch) {
        due = await this.wait(due, part.step);
        if (signal.aborted) return;
        this.state.place = place;
        this.shown += 1;
        this.skipped += part.step - 1;
        this.show(place, frames, true);
        place += part.step;
      }
      step = this.stepNow(1000 * this.shown / (performance.now() - began));
    }
  }

  /** Every frame, or as many as keep the time. */
  stepNow(able) {
    const { every, rate } = this.state;
    return every || !(rate > 0) ? 1 : stepFor(rate, Math.min(Math.max(able, 5), SCREEN));
  }

  /** Until the next frame's time has come and the screen wants a picture. @return when the one
   *  after it is due. */
  async wait(due, step) {
    const { rate } = this.state;
    let now = await new Promise((resolve) => { requestAnimationFrame(() => resolve(performance.now())); });
    if (!(rate > 0)) return now;
    while (now < due - 4 && this.playing) {
      now = await new Promise((resolve) => { requestAnimationFrame(() => resolve(performance.now())); });
    }
    // Time that was lost is not made up for by a rush.
    return Math.max(due, now - 250) + 1000 * step / rate;
  }
}
