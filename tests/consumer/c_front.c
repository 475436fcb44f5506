/* A caller in C of the installed package: c_front CLIP.kpf, which it makes and reads. */
#include <kpf.h>
#include <stdio.h>
#include <string.h>

static int told(void) {
  fprintf(stderr, "%s\n", kpf_error_text());
  return 1;
}

int main(int argc, char** argv) {
  const unsigned char image[4] = {1, 2, 3, 4};
  kpf_writer_options options = KPF_WRITER_OPTIONS_INIT;
  kpf_frame frame = KPF_FRAME_INIT;
  kpf_writer* writer = NULL;
  kpf_reader* reader = NULL;
  if (argc != 2) return 2;
  options.width = options.height = 2;
  options.bits = 8;
  options.frame_rate = 25;
  if (kpf_writer_create(argv[1], &options, &writer) != KPF_OK) return told();
  if (kpf_writer_add_image(writer, image, 0, NULL) != KPF_OK) return told();
  if (kpf_writer_close(writer, NULL) != KPF_OK) return told();
  if (kpf_reader_open(argv[1], NULL, &reader) != KPF_OK) return told();
  if (kpf_reader_frame(reader, 0, &frame) != KPF_OK) return told();
  if (memcmp(frame.pixels, image, sizeof image) != 0) return 3;
  return kpf_reader_close(reader) == KPF_OK ? 0 : told();
}
