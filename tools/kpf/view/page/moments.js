// Which frames belong together. Knows nothing of the page.

/** Seconds of a place, as the first frame and the rate tell; null where they do not. */
export function secondsOf(recording, place) {
  if (!recording.first || recording.rate <= 0) return null;
  return recording.first.seconds + recording.first.microseconds / 1e6
    + (place - recording.first.place) / recording.rate;
}

/** The place of `other` that goes with `place` of `leader`: the same one, or that of the time. */
export function placeBeside(leader, other, place, byTime) {
  if (leader === other || !byTime) return place;
  const seconds = secondsOf(leader, place);
  if (seconds === null || !other.first || other.rate <= 0) return place;
  return Math.round((seconds - secondsOf(other, 0)) * other.rate);
}

/** How many frames to go on by, so that `wanted` frames a second pass when `able` can be shown. */
export function stepFor(wanted, able) {
  return Math.max(1, Math.ceil(wanted / Math.max(able, 1) - 0.05));
}
