// The keys: one table, which the help shows and the page obeys.

/** @param act what can be done, by name. @return [keys, what the help says, what is done]. */
export function keyTable(act) {
  return [
    ['Space', 'play, pause', () => act.toggle()],
    ['← →', 'one frame back, on', null],
    ['ArrowLeft', '', () => act.step(-1)],
    ['ArrowRight', '', () => act.step(1)],
    [', .', 'ten frames back, on', null],
    [',', '', () => act.step(-10)],
    ['.', '', () => act.step(10)],
    ['Page Up, Page Down', 'a hundred frames back, on', null],
    ['PageUp', '', () => act.step(-100)],
    ['PageDown', '', () => act.step(100)],
    ['Home, End', 'first, last frame', null],
    ['Home', '', () => act.first()],
    ['End', '', () => act.last()],
    ['n p', 'next, previous lost frame', null],
    ['n', '', () => act.lost(1)],
    ['p', '', () => act.lost(-1)],
    ['l', 'follow a recording that grows', () => act.follow()],
    ['f', 'fit the picture into the window', () => act.fit()],
    ['1', 'a pixel of the screen for each sample', () => act.one()],
    ['+ −', 'nearer, farther (or the wheel); drag to pan', null],
    ['+', '', () => act.zoom(2)],
    ['=', '', () => act.zoom(2)],
    ['-', '', () => act.zoom(0.5)],
    ['Alt + arrows', 'pan', null],
    ['Alt+ArrowLeft', '', () => act.pan(80, 0)],
    ['Alt+ArrowRight', '', () => act.pan(-80, 0)],
    ['Alt+ArrowUp', '', () => act.pan(0, 80)],
    ['Alt+ArrowDown', '', () => act.pan(0, -80)],
    ['Shift + arrows', 'move the cursor by a sample, with Ctrl by ten', null],
    ...['Left', 'Right', 'Up', 'Down'].flatMap((way) => {
      const dx = { Left: -1, Right: 1 }[way] ?? 0, dy = { Up: -1, Down: 1 }[way] ?? 0;
      return [[`Shift+Arrow${way}`, '', () => act.cursor(dx, dy)],
        [`Ctrl+Shift+Arrow${way}`, '', () => act.cursor(10 * dx, 10 * dy)]];
    }),
    ['Enter', 'choose the sample under the cursor, as a click does', () => act.choose()],
    ['b', 'one corner of a box, then the other (or Shift and drag)', () => act.corner()],
    ['Escape', 'no region', () => act.clear()],
    ['a r', 'brightness: automatic, full range', null],
    ['a', '', () => act.automatic()],
    ['r', '', () => act.full()],
    ['e', 'original, amplified, reference, side by side', () => act.cycle()],
    ['[ ]', 'less, more gain', null],
    ['[', '', () => act.gain(-1)],
    [']', '', () => act.gain(1)],
    ['{ }', 'lower, higher frequency', null],
    ['{', '', () => act.frequency(-1)],
    ['}', '', () => act.frequency(1)],
    ['m', 'mark pixels that wrap or clip', () => act.marks()],
    ['v', 'analyse the vibration of the region', () => act.analyse()],
    ['i o u', 'in mark, out mark, no marks', null],
    ['i', '', () => act.markIn()],
    ['o', '', () => act.markOut()],
    ['u', '', () => act.markClear()],
    ['s', 'save a still', () => act.still()],
    ['?', 'this list', () => act.help()],
  ];
}

function nameOf(event) {
  const key = event.key === ' ' ? 'Space' : event.key;
  if (!key.startsWith('Arrow')) return event.ctrlKey || event.altKey || event.metaKey ? '' : key;
  return `${event.ctrlKey ? 'Ctrl+' : ''}${event.altKey ? 'Alt+' : ''}${event.shiftKey ? 'Shift+' : ''}${key}`;
}

/** Fields keep the keys that they need themselves. */
function isForField(event) {
  const { target } = event;
  if (document.querySelector('dialog[open]')) return true;
  if (target.matches('input[type=text], input[type=number]')) return event.key !== 'Escape' && !/^Page/.test(event.key);
  if (target.matches('input[type=range], select')) return /^(Arrow|Home|End|Page)/.test(event.key);
  return target.matches('button, input') && [' ', 'Enter'].includes(event.key);
}

export function listenToKeys(act) {
  const table = keyTable(act);
  const byKey = new Map(table.filter(([, , run]) => run).map(([key, , run]) => [key, run]));
  document.addEventListener('keydown', (event) => {
    const run = byKey.get(nameOf(event));
    if (!run || isForField(event)) return;
    event.preventDefault();
    run();
  });
  const list = document.getElementById('key-list');
  for (const [keys, text] of table.filter(([, about]) => about)) {
    const term = document.createElement('dt'), about = document.createElement('dd');
    term.textContent = keys;
    about.textContent = text;
    list.append(term, about);
  }
}
