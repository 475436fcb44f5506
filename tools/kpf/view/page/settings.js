// What of the view is kept in the address, so that loading the page again, or a bookmark, shows the
// same. Behind the #, which browsers do not send.

const NUMBERS = ['place', 'frequency', 'gain', 'in', 'out'];

export function readSettings(state) {
  const values = new URLSearchParams(location.hash.slice(1));
  for (const name of NUMBERS) {
    const value = Number(values.get(name));
    if (values.has(name) && Number.isFinite(value) && value >= 0) state[name] = value;
  }
  if (['original', 'amplified', 'reference', 'side'].includes(values.get('show'))) state.show = values.get('show');
  if (values.get('together') === 'time') state.together = 'time';
  state.clean = values.get('clean') === '1';
  state.marks = values.get('marks') === '1';
  state.paint = values.get('paint') ?? '';
}

export function keepSettings(state) {
  const values = new URLSearchParams();
  for (const name of NUMBERS) if (state[name] !== null) values.set(name, state[name]);
  values.set('show', state.show);
  if (state.together !== 'place') values.set('together', state.together);
  for (const name of ['clean', 'marks']) if (state[name]) values.set(name, '1');
  if (state.paint) values.set('paint', state.paint);
  history.replaceState(null, '', `#${values}`);
}
