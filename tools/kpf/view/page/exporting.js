// In and out marks, and what is made of the piece: files beside which kpf view was started.

import { getJson, post } from './api.js';
import { baseName } from './text.js';

const $ = (id) => document.getElementById(id);

// What the tool makes of a piece. The commands are its own, in a process of theirs.
const KINDS = [
  { kind: 'still', text: 'still of this frame (PNG)', ending: '.png', one: true },
  { kind: 'export', text: 'video, lossless (MKV)', ending: '.mkv' },
  { kind: 'export', text: 'video for viewing (MP4)', ending: '.mp4' },
  { kind: 'export', text: 'images (TIFF)', ending: '_%06d.tif' },
  { kind: 'cut', text: 'recording (KPF)', ending: '.kpf' },
  { kind: 'amplify', text: 'amplified video (MP4)', ending: '.mp4' },
  { kind: 'amplify', text: 'amplified video, lossless (MKV)', ending: '.mkv' },
  { kind: 'compare', text: 'side by side video (MP4)', ending: '.mp4' },
];

export class Exporting {
  /** @param changed () -> draws the marks. */
  constructor(state, offered, changed) {
    Object.assign(this, { state, changed });
    this.kinds = KINDS.filter(({ kind }) => offered.includes(kind === 'compare' ? 'amplify' : kind));
    $('export-form').hidden = this.kinds.length === 0;
    for (const { text } of this.kinds) $('export-kind').append(new Option(text));
    $('mark-in').addEventListener('click', () => this.mark('in'));
    $('mark-out').addEventListener('click', () => this.mark('out'));
    $('mark-clear').addEventListener('click', () => this.clear());
    $('export-kind').addEventListener('change', () => { this.named = false; this.say(); });
    $('export-name').addEventListener('input', () => { this.named = true; });
    $('export-form').addEventListener('submit', (event) => {
      event.preventDefault();
      this.start();
    });
    this.say();
  }

  mark(which) {
    const { state } = this;
    state[which] = state.place;
    if (state.in !== null && state.out !== null && state.in > state.out) {
      state[which === 'in' ? 'out' : 'in'] = null;
    }
    this.say();
    this.changed();
  }

  clear() {
    Object.assign(this.state, { in: null, out: null });
    this.say();
    this.changed();
  }

  get kind() { return this.kinds[$('export-kind').selectedIndex]; }

  say() {
    const { state } = this;
    $('in-value').textContent = state.in ?? 'first';
    $('out-value').textContent = state.out ?? 'last';
    if (this.named || !this.kind) return;
    const stem = baseName(state.recordings[0].name).replace(/\.[^.]*$/, '');
    const part = this.kind.one ? `_${String(state.place).padStart(6, '0')}` : '_piece';
    $('export-name').value = stem + part + this.kind.ending;
  }

  still() {
    $('export-kind').selectedIndex = 0;
    this.named = false;
    this.say();
    this.start();
  }

  tell(text, bad) {
    $('export-note').textContent = text;
    $('export-note').scrollIntoView({ block: 'nearest' }); // the key works wherever one looks
    $('export-note').classList.toggle('bad', Boolean(bad));
  }

  async start() {
    const { state, kind } = this;
    const { frequency, gain, clean, show, tone } = state;
    const job = { kind: kind.kind, recording: 0, name: $('export-name').value, frequency, gain, clean,
      place: state.place, from: state.in, to: state.out, show, tone: [tone.low, tone.high, tone.gamma] };
    $('export-go').disabled = true;
    try {
      this.tell('At work …');
      const { id, file } = await post('jobs', job);
      if (id === 0) this.tell(`Saved as ${file}`);
      for (let done = id === 0; !done;) {
        const news = await getJson('jobs', { id });
        done = news.state !== 'running';
        if (done && news.code === 0) this.tell(`Saved as ${file}`);
        else if (done) this.tell(news.text || `ended with code ${news.code}`, true);
        else await new Promise((resolve) => { setTimeout(resolve, 150); });
      }
    } catch (error) {
      this.tell(error.message, true);
    } finally {
      $('export-go').disabled = false;
    }
  }
}
