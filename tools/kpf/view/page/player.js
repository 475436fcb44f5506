// Gets frames and shows them: one when the place changes, or one after the other.

import { getFrames } from './api.js';
import { placeBeside, stepFor } from './moments.js';

const BATCH = 4;  // frames asked for at once while playing
const AHEAD = 3;  // requests under way, so that the server works while the page draws
const SCREEN = 60; // frames a second that any screen shows
const EARLY = 4;  // milliseconds before its time at which a frame may be shown

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
      const values = this.ask(recording, playing);
      const ask = async (at, n) => {
        if (at < 0 || at >= recording.places) return [];
        const frames = [];
        // An answer of very large pictures has fewer of them.
        for (let next = at; frames.length < n && next < recording.places; next = at + frames.length * step) {
          frames.push(...await getFrames({ ...values, from: next, count: n - frames.length, step }, signal));
        }
        return frames.map((frame) => Object.assign(frame, { asked: values }));
      };
      if (straight && from >= 0) return ask(from, count);
      const single = Array.from({ length: count }, (_, i) => ask(this.beside(recording, place + i * step), 1));
      return (await Promise.all(single)).map((frames) => frames[0]);
    }));
    const moments = Math.min(count, Math.ceil((this.places - place) / step));
    return Array.from({ length: moments }, (_, i) => columns.map((column) => column[i] ?? null));
  }

  /** What is asked for has changed: frames that are under way are asked for once more. */
  renew() { this.stale = true; }

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

  /** Shows frame after frame in order, none before its time. */
  async run(first, signal) {
    this.step = this.stepNow(SCREEN / 2);
    this.start(first);
    const began = performance.now();
    let due = began;
    while (!signal.aborted) {
      this.askAhead(signal);
      const part = this.queue.shift();
      if (!part) return;
      let { place } = part;
      for (const frames of await part.batch) {
        const now = await this.wait(due);
        if (signal.aborted) return;
        if (this.stale && now < due - EARLY) break; // there is time for what is wanted by now
        due = this.dueAfter(due, now, part.step);
        this.state.place = place;
        this.shown += 1;
        this.skipped += part.step - 1;
        this.show(place, frames, true);
        place += part.step;
        if (this.stale) break;
      }
      this.ahead = Math.min(this.ahead + 1, AHEAD);
      this.step = this.stepNow(1000 * this.shown / (performance.now() - began));
      if (this.stale) this.start(place);
    }
  }

  /** With one frame at first, and more and more under way: what was just changed shows at once. */
  start(place) {
    Object.assign(this, { stale: false, queue: [], ahead: 1, next: place });
  }

  askAhead(signal) {
    const { queue, ahead, step } = this;
    while (queue.length < ahead && this.next <= this.end()) {
      const count = Math.min(ahead === 1 ? 1 : BATCH, Math.floor((this.end() - this.next) / step) + 1);
      const batch = this.fetch(this.next, count, step, true, signal);
      batch.catch(() => {});
      queue.push({ place: this.next, step, batch });
      this.next += count * step;
    }
  }

  /** Every frame, or as many as keep the time. */
  stepNow(able) {
    const { every, rate } = this.state;
    return every || !(rate > 0) ? 1 : stepFor(rate, Math.min(Math.max(able, 5), SCREEN));
  }

  /** Until the next frame's time has come and the screen wants a picture, or another one is
   *  wanted. @return the time. */
  async wait(due) {
    for (;;) {
      const now = await new Promise((resolve) => { requestAnimationFrame(() => resolve(performance.now())); });
      if (!this.playing || this.stale || !(this.state.rate > 0) || now >= due - EARLY) return now;
    }
  }

  /** Time that was lost is not made up for by a rush. */
  dueAfter(due, now, step) {
    const { rate } = this.state;
    return rate > 0 ? Math.max(due, now - 250) + 1000 * step / rate : now;
  }
}
