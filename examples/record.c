/* Records frames made on the fly: record OUT.kpf
 *
 * A bright bar moves over a dark ground, 12 bits a pixel, 100 frames at 50 frames/s, of which every
 * tenth is lost on the way, as cameras lose them. The count is not announced: closing sets it. */
#include <kpf.h>
#include <stdio.h>

enum { WIDTH = 320, HEIGHT = 240, FRAMES = 100 };

static uint16_t image[WIDTH * HEIGHT]; /* 0 to 4095 */

static void draw(unsigned number) {
  for (unsigned y = 0; y < HEIGHT; ++y) {
    for (unsigned x = 0; x < WIDTH; ++x) {
      image[y * WIDTH + x] = (x + WIDTH - 3 * number % WIDTH) % WIDTH < 20 ? 3800 : 250;
    }
  }
}

static int told(void) {
  fprintf(stderr, "record: %s\n", kpf_error_text());
  return 1;
}

int main(int argc, char** argv) {
  kpf_writer_options options = KPF_WRITER_OPTIONS_INIT;
  kpf_writer_counts counts = KPF_WRITER_COUNTS_INIT;
  kpf_writer* writer = NULL;
  if (argc != 2) {
    fprintf(stderr, "Usage: record OUT.kpf\n");
    return 2;
  }
  options.width = WIDTH;
  options.height = HEIGHT;
  options.bits = 12;
  options.frame_rate = 50;
  options.start_seconds = 1700000000;
  options.text5 = "a bar that moves";
  if (kpf_writer_create(argv[1], &options, &writer) != KPF_OK) return told();

  for (unsigned number = 0; number < FRAMES; ++number) {
    kpf_result result = KPF_OK;
    if (number % 10 == 9) {
      result = kpf_writer_add_lost(writer);
    } else {
      draw(number);
      result = kpf_writer_add_image(writer, image, 0, NULL);
    }
    /* This frame is lost and told so; the next may well succeed. */
    if (result != KPF_OK) told();
  }
  if (kpf_writer_close(writer, &counts) != KPF_OK) return told();
  printf("%s: %u frames, %u of them lost\n", argv[1], counts.added, counts.lost);
  return 0;
}
