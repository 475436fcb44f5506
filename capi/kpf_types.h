/**
 * Results, constants and structures of kpf.h, which says what holds for all of them. Compile
 * against kpf.h; this file comes with it.
 *
 * Members have the same size and place on every 64-bit system. Later versions add members at the
 * end, eight bytes or a multiple of them at a time.
 */
#ifndef KPF_TYPES_H
#define KPF_TYPES_H

#include <stddef.h>
#include <stdint.h>

/** Version of this header; kpf_version() tells that of the library. */
#define KPF_VERSION_MAJOR 1
#define KPF_VERSION_MINOR 0

/** What a call came to: one of the KPF_ constants below. Later versions may add some, which is why
 * it is a plain integer. No number is ever given a second meaning. */
typedef int32_t kpf_result;

enum {
  KPF_OK = 0,
  KPF_ERROR_ARGUMENT = 1, /* null where there must be something, or a value out of its range */
  KPF_ERROR_STRUCT = 2,   /* struct_size is wrong, or a member this version does not know is set */
  KPF_ERROR_HANDLE = 3,   /* the handle is null or was closed */
  KPF_ERROR_NAME = 4,     /* not valid UTF-8, or without a file name and an extension */
  KPF_ERROR_EXISTS = 5,   /* there is something of that name, and replacing was not asked for */
  KPF_ERROR_OPEN = 6,     /* a file or folder cannot be opened or made */
  KPF_ERROR_WRITE = 7,    /* a file cannot be written, or not be brought to the disk */
  KPF_ERROR_FULL = 8,     /* as many frames as were announced have been added */
  KPF_ERROR_INCOMPLETE = 9, /* closed with fewer frames than were announced */
  KPF_ERROR_FORMAT = 10,    /* not a recording, or one that contradicts itself */
  KPF_ERROR_RANGE = 11,     /* there is no such frame or data file */
  KPF_ERROR_LOST = 12,      /* the frame was lost: there are no pixels to give */
  KPF_ERROR_NOT_READY = 13, /* the amplifier holds too few frames as yet */
  KPF_ERROR_MEMORY = 14,    /* out of memory */
  KPF_ERROR_INTERNAL = 15   /* a mistake of this library; please report the text */
};

/** Where the 12 bits of a sample stand in its 16, or the 8 in 16 when reading. */
enum {
  KPF_SAMPLES_VALUE = 0, /* in the low bits: the value itself, 0 to 4095 (or 255) */
  KPF_SAMPLES_LEFT = 1   /* in the high bits, zeros or noise below: the value times 16 (or 256) */
};

/** Of kpf_recording_info.announced: the recorder did not know, and has not closed the recording. */
#define KPF_FRAMES_UNKNOWN UINT32_C(0xFFFFFFFF)

/** In which order frames will mostly be asked for: a hint to the operating system. */
enum { KPF_ACCESS_SEQUENTIAL = 0, KPF_ACCESS_SPARSE = 1 };

/** What kpf_writer_create makes. Everything is copied. */
typedef struct kpf_writer_options {
  uint32_t struct_size;        /* sizeof(kpf_writer_options) */
  uint32_t width;              /* pixels a row, 1 to 65535 */
  uint32_t height;             /* rows, 1 to 65535 */
  uint32_t bits;               /* of a sample: 8 or 12 */
  uint32_t frame_rate;         /* frames per second, 1 to 2147483647; the format has whole ones */
  uint32_t frame_count;        /* frames announced; 0: not known, the true count is set at close */
  int64_t start_seconds;       /* time of frame 0, not negative; what the rate counts from */
  uint32_t start_microseconds; /* within that second, 0 to 999999 */
  uint32_t samples;            /* KPF_SAMPLES_ form of the 12-bit images to come; at 8 bits 0 */
  uint32_t replace;            /* 1: a recording of that name is removed first; 0: it is refused */
  uint32_t durable;            /* 1: closing waits until all is on the disk itself (fsync) */
  const char* text5;           /* of the caller's own meaning, at most 151 bytes; null: empty */
  const char* text2;           /* likewise, at most 60 bytes */
  int32_t value3;              /* of the caller's own meaning */
  int32_t value5;              /* likewise: 0, 1 or 2 */
  int32_t value7;              /* likewise */
  uint32_t reserved;           /* 0 */
} kpf_writer_options;

#define KPF_WRITER_OPTIONS_INIT \
  { sizeof(kpf_writer_options), 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, NULL, NULL, 0, 0, 0, 0 }

/** A frame's own time, in place of the one that the frame rate gives its number. */
typedef struct kpf_stamp {
  uint32_t struct_size;  /* sizeof(kpf_stamp) */
  uint32_t microseconds; /* within the second, 0 to 999999 */
  int64_t seconds;
} kpf_stamp;

#define KPF_STAMP_INIT \
  { sizeof(kpf_stamp), 0, 0 }

/** Counts of a writer, in frames. added = on disk as pictures + lost + failed. */
typedef struct kpf_writer_counts {
  uint32_t struct_size; /* sizeof(kpf_writer_counts) */
  uint32_t announced;   /* as kpf_writer_options.frame_count */
  uint32_t added;       /* places taken: the number of the next frame */
  uint32_t lost;        /* of these, added by kpf_writer_add_lost */
  uint32_t failed;      /* of these, answered with KPF_ERROR_WRITE: they read as lost */
  uint32_t refused;     /* frames that took no place: every other answer but KPF_OK */
} kpf_writer_counts;

#define KPF_WRITER_COUNTS_INIT \
  { sizeof(kpf_writer_counts), 0, 0, 0, 0, 0 }

/** How kpf_reader_open opens. */
typedef struct kpf_reader_options {
  uint32_t struct_size; /* sizeof(kpf_reader_options) */
  uint32_t access;      /* KPF_ACCESS_ */
} kpf_reader_options;

#define KPF_READER_OPTIONS_INIT \
  { sizeof(kpf_reader_options), 0 }

/** What kpf_reader_describe tells of a recording. */
typedef struct kpf_recording_info {
  uint32_t struct_size;     /* sizeof(kpf_recording_info) */
  uint32_t width;           /* pixels a row */
  uint32_t height;          /* rows */
  uint32_t bits;            /* of a sample: 8 or 12 */
  double frame_rate;        /* frames per second */
  uint32_t frame_count;     /* frames to ask for, lost ones included: 0 to frame_count - 1 */
  uint32_t announced;       /* frames that the header announces, or KPF_FRAMES_UNKNOWN */
  uint32_t complete;        /* 1: as many frames as announced, and no data file is missing */
  uint32_t frames_per_file; /* frame n is in data file n / frames_per_file + 1 */
  uint64_t frame_size;      /* bytes of a frame as stored */
  uint32_t has_status_file; /* 1: the recorder left a file that says frames are missing */
  uint32_t value5;          /* of the recorder's own meaning, as are the next four */
  double value3;
  double value7;
  char text5[152];              /* ended by a zero byte; not checked to be UTF-8 */
  char text2[64];               /* likewise */
  unsigned char identifier[16]; /* random; recordings begun within one second share it */
} kpf_recording_info;

#define KPF_RECORDING_INFO_INIT                                                        \
  {                                                                                    \
    sizeof(kpf_recording_info), 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, {0}, {0}, { 0 } \
  }

/** One frame, as kpf_reader_frame tells it. */
typedef struct kpf_frame {
  uint32_t struct_size;  /* sizeof(kpf_frame) */
  uint32_t lost;         /* 1: there is no picture; pixels is null, the times are 0 */
  uint32_t number;       /* as the recorder gave it, normally n; n for a lost frame */
  uint32_t microseconds; /* within the second */
  int64_t seconds;
  const void* pixels;    /* as stored, kpf_recording_info.frame_size bytes; null when lost */
  uint64_t pixel_offset; /* where these bytes begin in the data file; 0 when lost */
  uint32_t file_number;  /* the data file that holds them, from 1; 0 when lost */
  uint32_t reserved;     /* 0 */
} kpf_frame;

#define KPF_FRAME_INIT \
  { sizeof(kpf_frame), 0, 0, 0, 0, NULL, 0, 0, 0 }

/** What kpf_amplifier_create makes. */
typedef struct kpf_amplifier_options {
  uint32_t struct_size;    /* sizeof(kpf_amplifier_options) */
  uint32_t width;          /* pixels a row, 1 to 65535 */
  uint32_t height;         /* rows, 1 to 65535; width x height below 2^31 */
  uint32_t reserved;       /* 0 */
  double frame_rate;       /* frames per second, above 0 */
  double motion_frequency; /* of the motion to amplify, cycles per second; at most frame_rate */
  double gain;             /* factor on each pixel's positive difference from the reference */
} kpf_amplifier_options;

#define KPF_AMPLIFIER_OPTIONS_INIT \
  { sizeof(kpf_amplifier_options), 0, 0, 0, 0, 0, 0 }

#endif
