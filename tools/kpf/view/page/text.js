// How numbers and times are written. Knows nothing of the page.

const YEAR_10000 = 253402300800n;

/** "2026-11-21 05:00:00.123456 UTC"; seconds of another epoch as they are. */
export function timeText(seconds, microseconds) {
  const micro = String(microseconds).padStart(6, '0');
  if (seconds <= 0n || seconds >= YEAR_10000) return `${seconds}.${micro} s`;
  const day = new Date(Number(seconds) * 1000).toISOString();
  return `${day.slice(0, 10)} ${day.slice(11, 19)}.${micro} UTC`;
}

/** Hertz, as many digits as say something. */
export function hertz(value) {
  return value >= 100 ? value.toFixed(1) : value >= 10 ? value.toFixed(2) : value.toFixed(3);
}

export const STATE_TEXT = [
  '', 'recorded as lost: a placeholder', 'its data is missing', 'it cannot be read any more'];

/** One line about a recording. */
export function aboutText(recording) {
  const parts = [`${recording.width} × ${recording.height}`, `${recording.bits} bits`];
  if (recording.rate > 0) parts.push(`${recording.rate} frames/s`);
  if (recording.places > 0) parts.push(`${recording.places} frames`);
  if (recording.places < recording.announced) parts.push(`${recording.announced} announced`);
  for (const text of [recording.text2, recording.text5]) if (text) parts.push(text);
  return parts.join(' · ');
}

/** The name without its folders. */
export const baseName = (name) => name.split('/').pop();
