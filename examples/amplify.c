/* Makes a small movement visible: amplify
 *
 * A soft edge swings by a tenth of a pixel, 5 times a second, in frames that come 100 times a
 * second. Prints what the edge's pixel does before and after. */
#include <kpf.h>
#include <math.h>
#include <stdio.h>

enum { WIDTH = 64, HEIGHT = 16, FRAMES = 200 };

static unsigned char frame[WIDTH * HEIGHT];

static void draw(unsigned number) {
  const double edge = 0.5 * WIDTH + 0.1 * sin(6.283185307179586 * 5 * number / 100);
  for (unsigned i = 0; i < WIDTH * HEIGHT; ++i) {
    frame[i] = (unsigned char)(128 + 100 * tanh((i % WIDTH - edge) / 4) + 0.5);
  }
}

static int told(void) {
  fprintf(stderr, "amplify: %s\n", kpf_error_text());
  return 1;
}

/* How far the edge's pixel goes up and down. */
typedef struct range {
  int lowest;
  int highest;
} range;

static void widen(range* seen, int value) {
  if (value < seen->lowest) seen->lowest = value;
  if (value > seen->highest) seen->highest = value;
}

int main(void) {
  static unsigned char amplified[sizeof frame];
  const unsigned edge = WIDTH / 2;
  range before = {255, 0};
  range after = {255, 0};
  kpf_amplifier_options options = KPF_AMPLIFIER_OPTIONS_INIT;
  kpf_amplifier* amplifier = NULL;
  options.width = WIDTH;
  options.height = HEIGHT;
  options.frame_rate = 100;
  options.motion_frequency = 5;
  options.gain = 8;
  if (kpf_amplifier_create(&options, &amplifier) != KPF_OK) return told();

  for (unsigned number = 0; number < FRAMES; ++number) {
    kpf_result result = KPF_OK;
    draw(number);
    if (kpf_amplifier_add(amplifier, frame, 0) != KPF_OK) return told();
    result = kpf_amplifier_get(amplifier, amplified, sizeof amplified);
    if (result == KPF_ERROR_NOT_READY) continue; /* the window is not full yet */
    if (result != KPF_OK) return told();
    widen(&before, frame[edge]);
    widen(&after, amplified[edge]);
  }
  kpf_amplifier_destroy(amplifier);
  printf("the edge moves by %d of 255, amplified by %d\n", before.highest - before.lowest,
         after.highest - after.lowest);
  return after.highest - after.lowest > 3 * (before.highest - before.lowest) ? 0 : 1;
}
