/* Prints how bright each frame of a recording is: read CLIP.kpf */
#include <inttypes.h>
#include <kpf.h>
#include <stdio.h>
#include <stdlib.h>

static int told(void) {
  fprintf(stderr, "read: %s\n", kpf_error_text());
  return 1;
}

static double meanOf(const uint16_t* samples, size_t count) {
  double sum = 0;
  for (size_t i = 0; i < count; ++i) sum += samples[i];
  return sum / (double)count;
}

static int printFrame(kpf_reader* reader, uint32_t n, uint16_t* samples, size_t count) {
  kpf_frame frame = KPF_FRAME_INIT;
  if (kpf_reader_frame(reader, n, &frame) != KPF_OK) return told();
  if (frame.lost) { /* never taken for black */
    printf("frame %" PRIu32 ": lost\n", n);
    return 0;
  }
  if (kpf_reader_unpack(reader, n, samples, count, KPF_SAMPLES_VALUE) != KPF_OK) return told();
  printf("frame %" PRIu32 " at %" PRId64 ".%06" PRIu32 " s: mean %.1f\n", frame.number,
         frame.seconds, frame.microseconds, meanOf(samples, count));
  return 0;
}

int main(int argc, char** argv) {
  kpf_recording_info info = KPF_RECORDING_INFO_INIT;
  kpf_reader* reader = NULL;
  uint16_t* samples = NULL;
  int status = 0;
  if (argc != 2) {
    fprintf(stderr, "Usage: read CLIP.kpf\n");
    return 2;
  }
  if (kpf_reader_open(argv[1], NULL, &reader) != KPF_OK) return told();
  if (kpf_reader_describe(reader, &info) != KPF_OK) return told();
  samples = malloc((size_t)info.width * info.height * sizeof *samples);
  for (uint32_t n = 0; samples != NULL && n < info.frame_count && status == 0; ++n) {
    status = printFrame(reader, n, samples, (size_t)info.width * info.height);
  }
  printf("%" PRIu32 " x %" PRIu32 ", %" PRIu32 " bits, %s\n", info.width, info.height, info.bits,
         info.complete ? "complete" : "not complete");
  free(samples);
  kpf_reader_close(reader);
  return status;
}
