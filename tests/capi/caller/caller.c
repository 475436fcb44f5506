/* A caller that shares nothing with the library but kpf.h: no C library, no compiler, no heap.
 *
 * Records, reads back and amplifies in the current folder; ends with 0, or with the number of the
 * step that failed. On Windows it is compiled for Microsoft's C runtime, of which it uses nothing.
 */
#include <kpf.h>

#ifdef _WIN32
__declspec(dllimport) void __stdcall ExitProcess(unsigned code);
int _fltused = 0; /* the linker asks for it where there are doubles */

/* What the compiler may call by itself. */
void* memset(void* to, int value, size_t size) {
  volatile unsigned char* bytes = to;
  while (size-- > 0) *bytes++ = (unsigned char)value;
  return to;
}
void* memcpy(void* to, const void* from, size_t size) {
  volatile unsigned char* bytes = to;
  const unsigned char* source = from;
  while (size-- > 0) *bytes++ = *source++;
  return to;
}
#endif

/* Latin, Cyrillic, Chinese and a sign beyond the first 65536, in UTF-8. */
#define NAME "Z\xC3\xBCrich-\xD0\xB4\xD0\xBE\xD0\xBC-\xE5\xB1\x8B-\xF0\x9F\x8F\xA0.kpf"

enum { WIDTH = 4, HEIGHT = 2, PIXELS = WIDTH * HEIGHT, PACKED = PIXELS * 3 / 2 };
static const uint16_t image[PIXELS] = {0xABC, 0x123, 0x001, 0xFFF, 0x800, 0x7FF, 0x010, 0xF00};
static const unsigned char packed[PACKED] = {0xAB, 0x3C, 0x12, 0x00, 0xF1, 0xFF,
                                             0x80, 0xF0, 0x7F, 0x01, 0x00, 0xF0};

static int lines;

static void countLine(int32_t level, const char* line, void* payload) {
  if (level == 3 && line[0] != '\0') ++*(int*)payload;
}

static kpf_writer_options optionsOf(uint32_t frame_count) {
  kpf_writer_options options = KPF_WRITER_OPTIONS_INIT;
  options.width = WIDTH;
  options.height = HEIGHT;
  options.bits = 12;
  options.frame_rate = 8;
  options.frame_count = frame_count;
  options.start_seconds = 1000;
  options.durable = 1;
  options.text5 = "made anywhere";
  return options;
}

static int record(void) {
  const kpf_writer_options options = optionsOf(0);
  kpf_writer_counts counts = KPF_WRITER_COUNTS_INIT;
  kpf_stamp stamp = KPF_STAMP_INIT;
  kpf_writer* writer = NULL;
  if (kpf_writer_create(NAME, &options, &writer) != KPF_OK) return 10;
  if (kpf_writer_add_image(writer, image, 0, NULL) != KPF_OK) return 11;
  if (kpf_writer_add_packed(writer, packed, PACKED, NULL) != KPF_OK) return 12;
  if (kpf_writer_add_lost(writer) != KPF_OK) return 13;
  stamp.seconds = -1;
  stamp.microseconds = 5;
  if (kpf_writer_add_image(writer, image, WIDTH * 2, &stamp) != KPF_OK) return 14;
  if (kpf_writer_close(writer, &counts) != KPF_OK) return 15;
  if (counts.added != 4 || counts.lost != 1 || counts.failed != 0) return 16;
  if (kpf_writer_create(NAME, &options, &writer) != KPF_ERROR_EXISTS) return 17;
  return kpf_writer_close(writer, NULL) == KPF_ERROR_HANDLE ? 0 : 18;
}

static int recordTooLittle(void) {
  const kpf_writer_options options = optionsOf(2);
  kpf_writer* writer = NULL;
  kpf_set_log(countLine, &lines);
  if (kpf_writer_create("short.kpf", &options, &writer) != KPF_OK) return 20;
  if (kpf_writer_close(writer, NULL) != KPF_ERROR_INCOMPLETE) return 21;
  kpf_set_log(NULL, NULL);
  return lines == 1 ? 0 : 22;
}

static int read(void) {
  kpf_recording_info info = KPF_RECORDING_INFO_INIT;
  kpf_frame frame = KPF_FRAME_INIT;
  kpf_reader* reader = NULL;
  uint16_t samples[PIXELS];
  if (kpf_reader_open(NAME, NULL, &reader) != KPF_OK) return 30;
  if (kpf_reader_describe(reader, &info) != KPF_OK) return 31;
  if (info.frame_count != 4 || info.complete != 1 || info.bits != 12) return 32;
  for (uint32_t n = 0; n < 4; ++n) {
    if (kpf_reader_frame(reader, n, &frame) != KPF_OK || frame.number != n) return 33;
    if (frame.lost != (n == 2) || (frame.pixels == NULL) != (n == 2)) return 34;
    for (int i = 0; n != 2 && i < PACKED; ++i) {
      if (((const unsigned char*)frame.pixels)[i] != packed[i]) return 35;
    }
  }
  if (frame.seconds != -1 || frame.microseconds != 5) return 36;
  if (kpf_reader_unpack(reader, 1, samples, PIXELS, KPF_SAMPLES_VALUE) != KPF_OK) return 37;
  for (int i = 0; i < PIXELS; ++i) {
    if (samples[i] != image[i]) return 38;
  }
  if (kpf_reader_close(reader) != KPF_OK) return 39;
  return 0;
}

/* Large enough for the library's team of threads. */
static unsigned char big[300 * 400];

static int amplify(void) {
  kpf_amplifier_options options = KPF_AMPLIFIER_OPTIONS_INIT;
  kpf_amplifier* amplifier = NULL;
  options.width = 400;
  options.height = 300;
  options.frame_rate = 25;
  options.motion_frequency = 20;
  options.gain = 3;
  if (kpf_amplifier_create(&options, &amplifier) != KPF_OK) return 40;
  for (size_t i = 0; i < sizeof big; ++i) big[i] = 90;
  if (kpf_amplifier_add(amplifier, big, 0) != KPF_OK) return 41;
  if (kpf_amplifier_get(amplifier, big, sizeof big) != KPF_ERROR_NOT_READY) return 42;
  if (kpf_amplifier_add(amplifier, big, 0) != KPF_OK) return 43;
  if (kpf_amplifier_get(amplifier, big, sizeof big) != KPF_OK) return 44;
  if (big[0] != 180 || big[sizeof big - 1] != 180) return 45; /* 90 + 3 x (90 - 60) */
  return kpf_amplifier_destroy(amplifier) == KPF_OK ? 0 : 46;
}

/* An exception inside the library comes out as a result and a text. */
static int fail(void) {
  const char* const expected = "kpf_reader_open: ";
  kpf_reader* reader = NULL;
  if (kpf_reader_open("none.kpf", NULL, &reader) != KPF_ERROR_OPEN) return 50;
  for (int i = 0; expected[i] != '\0'; ++i) {
    if (kpf_error_text()[i] != expected[i]) return 51;
  }
  return 0;
}

static int run(void) {
  int (*const steps[])(void) = {record, recordTooLittle, read, amplify, fail};
  for (size_t i = 0; i < sizeof steps / sizeof *steps; ++i) {
    const int step = steps[i]();
    if (step != 0) return step;
  }
  return 0;
}

#ifdef _WIN32
void start(void) { ExitProcess((unsigned)run()); }
#else
int main(void) { return run(); }
#endif
