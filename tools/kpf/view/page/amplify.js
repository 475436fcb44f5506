// The amplifier's controls, and what they mean.

import { hertz } from './text.js';

const $ = (id) => document.getElementById(id);
const STEPS = 1000; // of the frequency's slider, whose scale is logarithmic
const HIGHEST_GAIN = 255; // as kpf amplify has it
const SHOWS = ['original', 'amplified', 'reference', 'side'];

export class Amplify {
  /** @param changed (panes too) -> shows the place again. */
  constructor(state, changed) {
    Object.assign(this, { state, changed });
    const rate = state.recordings[0].rate;
    this.most = rate > 0 ? rate / 2 : 1;
    this.least = rate > 0 ? Math.max(rate * 3 / 4096, 0.01) : 0.01;
    state.frequency = Math.min(Math.max(state.frequency, this.least), this.most);
    $('show').disabled = !(rate > 0);
    $('frequency-value').max = this.most;
    $('show').addEventListener('change', () => this.set({ show: $('show').value }));
    $('marks').addEventListener('change', () => this.set({ marks: $('marks').checked }));
    $('clean').addEventListener('change', () => this.set({ clean: $('clean').checked }));
    $('frequency').addEventListener('input', () => this.set({ frequency: this.fromSlider() }));
    $('frequency-value').addEventListener('change', () => this.set({ frequency: Number($('frequency-value').value) }));
    for (const name of ['gain', 'gain-value']) {
      $(name).addEventListener(name === 'gain' ? 'input' : 'change', () => this.set({ gain: Number($(name).value) }));
    }
    this.say();
  }

  fromSlider() {
    const value = this.least * (this.most / this.least) ** (Number($('frequency').value) / STEPS);
    return Number(value.toPrecision(3));
  }

  set(values) {
    const { state } = this;
    const before = state.show;
    Object.assign(state, values);
    state.frequency = Math.min(Math.max(state.frequency || this.least, this.least), this.most);
    state.gain = Math.min(Math.max(state.gain || 0, 0), HIGHEST_GAIN);
    // Turning a knob of something that is not on the screen would show nothing.
    if (('frequency' in values || 'gain' in values) && state.show === 'original') state.show = 'amplified';
    this.say();
    this.changed(before !== state.show);
  }

  cycle() { this.set({ show: SHOWS[(SHOWS.indexOf(this.state.show) + 1) % SHOWS.length] }); }
  moreGain(way) { this.set({ gain: Math.max(0, this.state.gain + way) }); }
  moreFrequency(way) { this.set({ frequency: Number((this.state.frequency * 1.05 ** way).toPrecision(4)) }); }

  /** Pictures that the server has to send, in the order of the panes. */
  pictures() {
    const { show, marks } = this.state;
    const kinds = show === 'side' ? ['original', 'reference', 'amplified'] : [show];
    return marks && kinds.includes('amplified') ? [...kinds, 'marks'] : kinds;
  }

  say() {
    const { show, frequency, gain, marks, clean } = this.state;
    $('show').value = show;
    $('marks').checked = marks;
    $('clean').checked = clean;
    $('frequency').value = Math.round(Math.log(frequency / this.least) / Math.log(this.most / this.least) * STEPS);
    $('frequency-value').value = frequency;
    $('gain').value = gain;
    $('gain-value').value = gain;
    $('way').textContent = show === 'original' ? '' : `${this.caption(show === 'reference' ? 'reference' : 'amplified')}`;
  }

  caption(kind) {
    const { frequency, gain, clean } = this.state;
    const way = clean ? 'the clean way' : 'the library’s way';
    if (kind === 'original') return 'original';
    if (kind === 'reference') return `reference: three cycles of ${hertz(frequency)} Hz, ${way}`;
    return `amplified ${gain}× at ${hertz(frequency)} Hz, ${way}`;
  }

  /** What there is to know of the frame on the screen. */
  tell(frame) {
    const { show } = this.state;
    const parts = [];
    if (show !== 'original' && frame) {
      if (!frame.windowFull) parts.push('The window is filling: frames pass unchanged.');
      else parts.push(`${this.state.clean ? '' : `${frame.wraps} pixels wrap, `}${frame.clips} clip.`);
      if (this.state.recordings[0].bits === 12) parts.push('Of 12 bits the upper 8 are amplified.');
    }
    $('amplify-note').textContent = parts.join(' ');
  }
}
