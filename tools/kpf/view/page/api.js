// What the server gives. Addresses are relative, so that the secret stands nowhere in the page.

export const STATE = { there: 0, placeholder: 1, missing: 2, unreadable: 3 };
const HEAD = 64;

async function checked(response) {
  if (response.ok) return response;
  let text = `the server answered ${response.status}`;
  try { text = (await response.json()).error; } catch { /* the number has to do */ }
  throw new Error(text);
}

export async function getJson(path, values = {}) {
  const response = await fetch(`api/${path}?${new URLSearchParams(values)}`);
  return (await checked(response)).json();
}

/** What starts work or makes files. */
export async function post(path, body) {
  const response = await fetch(`api/${path}`, { method: 'POST', body: JSON.stringify(body) });
  return (await checked(response)).json();
}

/** Frames of one recording, in their order; see readFrames for what they are. */
export async function getFrames(values, signal) {
  const response = await fetch(`api/frames?${new URLSearchParams(values)}`, { signal });
  return readFrames(await (await checked(response)).arrayBuffer());
}

/** Heads of 64 bytes, each followed by its pictures, which are not copied. */
export function readFrames(buffer) {
  const view = new DataView(buffer);
  const frames = [];
  for (let at = 0; at < buffer.byteLength;) {
    const [place, state, sequence, microseconds] = [0, 4, 8, 12].map((o) => view.getUint32(at + o, true));
    const [width, height, bytes, count, wraps, clips, full] =
      [24, 28, 32, 36, 40, 44, 48].map((o) => view.getUint32(at + o, true));
    const frame = { place, state, sequence, microseconds, seconds: view.getBigInt64(at + 16, true),
      width, height, bytes, wraps, clips, windowFull: full === 1, pictures: [] };
    at += HEAD;
    for (let i = 0; i < count; ++i) {
      frame.pictures.push(bytes === 2 ? new Uint16Array(buffer, at, width * height)
        : new Uint8Array(buffer, at, width * height));
      at += width * height * bytes;
    }
    frames.push(frame);
  }
  return frames;
}
