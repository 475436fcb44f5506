// The page: what is on the screen, and what the controls do with it.

import { Amplify } from './amplify.js';
import { getJson } from './api.js';
import { Brightness } from './brightness.js';
import { Exporting } from './exporting.js';
import { listenToKeys } from './keys.js';
import { boxOf, Panes } from './panes.js';
import { Player } from './player.js';
import { keepSettings, readSettings } from './settings.js';
import { aboutText, baseName, timeText } from './text.js';
import { Timeline } from './timeline.js';
import { Vibration } from './vibration.js';

const $ = (id) => document.getElementById(id);
const RATES = [0, 1, 2, 5, 10, 15, 25, 30, 60];

const state = {
  recordings: [], place: 0, show: 'original', frequency: 5, gain: 8, marks: false, clean: false,
  tone: { low: 0, high: 255, gamma: 1 }, rate: 25, every: true, in: null, out: null,
  together: 'place', region: null, cursor: null, follow: false, paint: '',
};
let panes, player, timeline, brightness, amplify, vibration, exporting, rateBegan, corner = null;

function failed(error) {
  $('problem').textContent = error.message;
  $('problem').hidden = false;
}

/** Values of a request for frames, of the form that the screen needs. */
function ask(recording, playing) {
  const pictures = amplify.pictures();
  const values = { recording: state.recordings.indexOf(recording), pictures };
  if (pictures.some((kind) => kind !== 'original')) {
    Object.assign(values, { frequency: state.frequency, gain: state.gain, way: state.clean ? 'clean' : 'library' });
  }
  if (playing) {
    const unit = recording.bits === 8 ? 16 : 1; // tones are of 12 bits
    const { low, high, gamma } = state.tone;
    values.tone = [low * unit, high * unit, gamma].join();
    values.cut = panes.cutOf(recording);
  }
  return values;
}

function show(place, frames, playing) {
  $('problem').hidden = true;
  panes.show(frames, playing);
  const frame = frames[0];
  if (document.activeElement !== $('frame')) $('frame').value = place;
  const there = frame && frame.state === 0;
  $('time').textContent = there ? timeText(frame.seconds, frame.microseconds) : 'lost';
  $('time').title = there ? `the record says number ${frame.sequence}` : '';
  amplify.tell(there ? frame : null);
  if (playing) tellRate();
  else {
    figures();
    exporting.say();
    keepSettings(state);
  }
  timeline.draw();
  // For whoever measures the page from outside.
  document.dispatchEvent(new CustomEvent('kpf-shown', { detail: { place, playing } }));
}

function tellRate() {
  if (player.shown === 1) rateBegan = performance.now();
  const seconds = (performance.now() - rateBegan) / 1000;
  const rate = seconds > 0.3 ? `${((player.shown - 1) / seconds).toFixed(1)} frames/s · ` : '';
  $('shown').textContent = rate + (player.skipped ? `${player.skipped} skipped` : 'every frame');
}

/** Of the first pane's still picture. */
function figures() {
  const pane = panes.list[0];
  if (pane.picture && !pane.picture.toned) brightness.take(pane.picture, state.region);
  tellCursor(pane);
}

function tellCursor(pane) {
  const { cursor } = state;
  $('cursor-place').textContent = cursor ? `${cursor[0]}, ${cursor[1]}` : '–';
  const value = cursor ? (pane ?? panes.list[0]).valueAt(...cursor) : null;
  const exported = state.recordings[0].bits === 12 && (pane ?? panes.list[0]).picture?.bytes === 2 && value !== null
    ? ` (${value * 16} of 16 bits)` : '';
  $('cursor-value').textContent = value === null ? (player.playing ? 'pause to read it' : '–') : value + exported;
}

function setRegion(region, done = true) {
  state.region = region;
  panes.drawOver();
  if (done) {
    figures();
    vibration.choose(region);
  }
}

const again = () => (player.playing ? player.renew() : player.go(state.place));
function restart() {
  player.stop();
  player.play();
}

const act = {
  toggle: () => player.toggle(),
  step: (by) => player.go(state.place + by),
  first: () => player.go(0),
  last: () => player.go(state.recordings[0].places - 1),
  lost: (way) => {
    const place = timeline.lostBeside(way);
    if (place !== null) player.go(place);
  },
  follow: () => { $('follow').checked = state.follow = !state.follow; follow(); },
  fit: () => panes.fit(),
  one: () => panes.one(),
  zoom: (factor) => panes.zoom(factor),
  pan: (x, y) => panes.pan(x, y),
  cursor: (dx, dy) => {
    const { width, height } = state.recordings[0];
    const [x, y] = state.cursor ?? [width >> 1, height >> 1];
    state.cursor = [Math.min(Math.max(x + dx, 0), width - 1), Math.min(Math.max(y + dy, 0), height - 1)];
    panes.drawOver();
    tellCursor();
  },
  choose: () => { if (state.cursor) setRegion([...state.cursor, 1, 1]); },
  corner: () => {
    if (!state.cursor) return;
    if (corner) setRegion(boxOf(corner, state.cursor, state.recordings[0]));
    corner = corner ? null : state.cursor;
  },
  clear: () => { corner = null; setRegion(null); },
  automatic: () => brightness.automatic(),
  full: () => brightness.full(),
  cycle: () => amplify.cycle(),
  gain: (by) => amplify.moreGain(by),
  frequency: (way) => amplify.moreFrequency(way),
  marks: () => amplify.set({ marks: !state.marks }),
  analyse: () => vibration.analyse(),
  markIn: () => exporting.mark('in'),
  markOut: () => exporting.mark('out'),
  markClear: () => exporting.clear(),
  still: () => exporting.still(),
  help: () => $('help').showModal(),
};

function listen() {
  const clicks = { play: 'toggle', first: 'first', last: 'last', fit: 'fit', one: 'one', 'help-button': 'help' };
  for (const [id, name] of Object.entries(clicks)) $(id).addEventListener('click', () => act[name]());
  $('back').addEventListener('click', () => act.step(-1));
  $('forth').addEventListener('click', () => act.step(1));
  $('zoom-in').addEventListener('click', () => act.zoom(2));
  $('zoom-out').addEventListener('click', () => act.zoom(0.5));
  $('frame').addEventListener('change', () => player.go(Number($('frame').value) || 0));
  $('rate').addEventListener('change', () => { state.rate = Number($('rate').value); if (player.playing) restart(); });
  $('every').addEventListener('change', () => { state.every = $('every').checked; if (player.playing) restart(); });
  $('follow').addEventListener('change', () => { state.follow = $('follow').checked; follow(); });
  $('together').addEventListener('change', () => { state.together = $('together').value; again(); });
  player.onchange = () => {
    $('play').setAttribute('aria-pressed', player.playing);
    $('play').setAttribute('aria-label', player.playing ? 'pause' : 'play');
    $('play').textContent = player.playing ? '❚❚' : '▶';
  };
  new ResizeObserver(() => timeline.draw()).observe($('timeline'));
  listenToKeys(act);
}

function fillRates() {
  const own = state.recordings[0].rate;
  const rates = RATES.includes(own) || !(own > 0) ? RATES : [...RATES, own].sort((a, b) => a - b);
  for (const rate of rates) {
    const text = rate === 0 ? 'as fast as it can' : rate === own ? `${rate}/s, as recorded` : `${rate}/s`;
    $('rate').append(new Option(text, rate));
  }
  $('rate').value = state.rate;
}

/** Looks whether a recording has grown, and goes to its newest frame if that is wanted. */
async function grow() {
  const { recordings } = await getJson('recordings');
  recordings.forEach(({ places, first }, i) => Object.assign(state.recordings[i], { places, first }));
  const growing = recordings.some(({ places, announced }) => places < announced);
  $('of').textContent = `of ${recordings[0].places}`;
  $('about').textContent = aboutText(state.recordings[0]);
  timeline?.search();
  timeline?.draw();
  return growing;
}

let following = false;
async function follow() {
  if (following) return;
  following = true;
  try {
    while (await grow() || state.follow) {
      if (state.follow && !player.playing && state.place < state.recordings[0].places - 1) await player.go(Infinity);
      await new Promise((resolve) => { setTimeout(resolve, state.follow ? 250 : 1000); });
    }
  } catch (error) {
    failed(error);
  } finally {
    following = false;
  }
}

async function start() {
  const found = await getJson('recordings');
  state.recordings = found.recordings;
  const [leader] = state.recordings;
  state.tone.high = 2 ** leader.bits - 1;
  readSettings(state);
  state.follow = found.live;
  $('follow').checked = state.follow;
  document.title = `${baseName(leader.name)} – kpf view`;
  $('title').textContent = state.recordings.map(({ name }) => baseName(name)).join('  |  ');
  document.body.classList.toggle('several', state.recordings.length > 1);
  document.body.classList.toggle('has-clean', found.clean === true);
  if (leader.rate > 0 && leader.rate < state.rate) state.rate = leader.rate;
  amplify = new Amplify(state, (rearrange) => {
    if (rearrange) panes.arrange();
    if (rearrange && player.playing) restart();
    else again();
  });
  brightness = new Brightness(state, leader.bits, () => (player.playing ? player.renew() : panes.draw()));
  player = new Player(state, ask, show, failed);
  panes = new Panes(state, amplify, {
    cursor: (pane, x, y) => { state.cursor = [x, y]; panes.drawOver(); tellCursor(pane); },
    choose: (x, y) => setRegion(boxOf([x, y], [x, y], leader)),
    box: setRegion,
    moved: () => { if (player.playing) player.renew(); },
  });
  vibration = new Vibration(state, found, amplify, panes);
  vibration.onbox = (box) => { state.region = box; panes.drawOver(); figures(); };
  vibration.onplace = (place) => player.go(place);
  exporting = new Exporting(state, found.jobs ?? [], () => { timeline.draw(); keepSettings(state); });
  timeline = new Timeline($('timeline'), state, (place) => player.go(place));
  fillRates();
  listen();
  panes.arrange();
  await player.go(state.follow ? Infinity : Math.min(state.place, Math.max(leader.places - 1, 0)));
  follow();
  document.body.dataset.ready = 'yes';
}

start().catch(failed);
