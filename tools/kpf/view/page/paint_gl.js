// Draws samples by WebGL2: all bits go to the graphics processor, and a shader makes grey of them.

const VERTICES = `#version 300 es
in vec2 corner;
void main() { gl_Position = vec4(corner, 0.0, 1.0); }`;

const FRAGMENTS = `#version 300 es
precision highp float;
precision highp usampler2D;
uniform usampler2D samples, marks;
uniform vec2 canvasSize, origin, first, size, outSize;
uniform float scale, low, high, gamma, level;  // level: what one step of a sample is worth
uniform bool marked;
out vec4 colour;

float greyAt(vec2 at) {
  ivec2 texel = ivec2(min(floor(at * outSize / size), outSize - 1.0));
  float value = float(texelFetch(samples, texel, 0).r);
  float linear = clamp((floor(value * level) - low) / max(high - low, 1.0), 0.0, 1.0);
  return pow(linear, 1.0 / gamma);
}

void main() {
  vec2 pixel = vec2(gl_FragCoord.x, canvasSize.y - gl_FragCoord.y);
  vec2 at = origin + pixel / scale - first;
  if (any(lessThan(at, vec2(0.0))) || any(greaterThanEqual(at, size))) {
    colour = vec4(0.0, 0.0, 0.0, 1.0);
    return;
  }
  float grey = greyAt(at);
  colour = vec4(vec3(grey), 1.0);
  if (marked) {
    uint mark = texelFetch(marks, ivec2(min(floor(at * outSize / size), outSize - 1.0)), 0).r;
    if (mark == 1u) colour = vec4(1.0, 0.706, 0.251, 1.0);
    if (mark == 2u) colour = vec4(0.941, 0.310, 1.0, 1.0);
  }
}`;

function compiled(gl, type, source) {
  const shader = gl.createShader(type);
  gl.shaderSource(shader, source);
  gl.compileShader(shader);
  if (!gl.getShaderParameter(shader, gl.COMPILE_STATUS)) throw new Error(gl.getShaderInfoLog(shader));
  return shader;
}

let fast = null; // whether WebGL is drawn by a processor made for it

/** Asked of a canvas of its own: one that has had WebGL has no 2D any more. */
function isFast() {
  const gl = document.createElement('canvas').getContext('webgl2', { failIfMajorPerformanceCaveat: true });
  if (!gl) return false;
  const names = gl.getExtension('WEBGL_debug_renderer_info');
  const name = names ? gl.getParameter(names.UNMASKED_RENDERER_WEBGL) : '';
  gl.getExtension('WEBGL_lose_context')?.loseContext();
  return !/swiftshader|llvmpipe|software/i.test(name);
}

/** WebGL2, or null where there is none, or only one in software, which draws more slowly. */
export function openGl(canvas, evenInSoftware) {
  fast ??= isFast();
  return fast || evenInSoftware
    ? canvas.getContext('webgl2', { alpha: false, antialias: false, preserveDrawingBuffer: true }) : null;
}

export class PainterGl {
  constructor(canvas, gl) {
    this.canvas = canvas;
    this.gl = gl;
    const program = gl.createProgram();
    gl.attachShader(program, compiled(gl, gl.VERTEX_SHADER, VERTICES));
    gl.attachShader(program, compiled(gl, gl.FRAGMENT_SHADER, FRAGMENTS));
    gl.linkProgram(program);
    gl.useProgram(program);
    this.place = new Proxy({}, { get: (_, name) => gl.getUniformLocation(program, name) });
    gl.bindBuffer(gl.ARRAY_BUFFER, gl.createBuffer());
    gl.bufferData(gl.ARRAY_BUFFER, new Float32Array([-1, -1, 3, -1, -1, 3]), gl.STATIC_DRAW);
    const corner = gl.getAttribLocation(program, 'corner');
    gl.enableVertexAttribArray(corner);
    gl.vertexAttribPointer(corner, 2, gl.FLOAT, false, 0, 0);
    this.textures = [gl.createTexture(), gl.createTexture()];
    this.shapes = ['', ''];
    gl.uniform1i(this.place.samples, 0);
    gl.uniform1i(this.place.marks, 1);
  }

  upload(unit, samples, width, height, bytes) {
    const { gl } = this;
    gl.activeTexture(gl.TEXTURE0 + unit);
    gl.bindTexture(gl.TEXTURE_2D, this.textures[unit]);
    gl.pixelStorei(gl.UNPACK_ALIGNMENT, bytes);
    const type = bytes === 2 ? gl.UNSIGNED_SHORT : gl.UNSIGNED_BYTE;
    const shape = `${width} ${height} ${bytes}`;
    if (this.shapes[unit] !== shape) {
      this.shapes[unit] = shape;
      gl.texImage2D(gl.TEXTURE_2D, 0, bytes === 2 ? gl.R16UI : gl.R8UI, width, height, 0,
        gl.RED_INTEGER, type, null);
      for (const filter of [gl.TEXTURE_MIN_FILTER, gl.TEXTURE_MAG_FILTER]) {
        gl.texParameteri(gl.TEXTURE_2D, filter, gl.NEAREST);
      }
    }
    gl.texSubImage2D(gl.TEXTURE_2D, 0, 0, 0, width, height, gl.RED_INTEGER, type, samples);
  }

  draw(picture, geometry, tone) {
    const { gl, place } = this;
    const { width, height } = this.canvas;
    if (this.uploaded !== picture.samples) {
      this.upload(0, picture.samples, picture.width, picture.height, picture.bytes);
      this.uploaded = picture.samples;
    }
    if (picture.marks) this.upload(1, picture.marks, picture.width, picture.height, 1);
    gl.viewport(0, 0, width, height);
    gl.uniform2f(place.canvasSize, width, height);
    gl.uniform2f(place.origin, geometry.x, geometry.y);
    gl.uniform2f(place.first, picture.cut[0], picture.cut[1]);
    gl.uniform2f(place.size, picture.cut[2], picture.cut[3]);
    gl.uniform2f(place.outSize, picture.width, picture.height);
    gl.uniform1f(place.scale, geometry.scale);
    const levels = picture.toned ? { low: 0, high: 255, gamma: 1 } : tone;
    for (const name of ['low', 'high', 'gamma']) gl.uniform1f(place[name], levels[name]);
    const level = picture.bytes === 2 ? 1 / 16 : picture.toned || picture.bits === 8 ? 1 : 16;
    gl.uniform1f(place.level, level);
    gl.uniform1i(place.marked, picture.marks ? 1 : 0);
    gl.drawArrays(gl.TRIANGLES, 0, 3);
  }

  clear() {
    this.gl.clearColor(0, 0, 0, 1);
    this.gl.clear(this.gl.COLOR_BUFFER_BIT);
  }
}
