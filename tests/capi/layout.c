/* Where the members of version 1.0 stand, and what its constants are. These lines are never
 * changed, only added to. */
#include <kpf.h>

#define AT(structure, member, offset) \
  _Static_assert(offsetof(structure, member) == (offset), #structure "." #member)
#define SIZE(structure, size) _Static_assert(sizeof(structure) == (size), #structure)

#define VALUE(constant, value) _Static_assert((constant) == (value), #constant)

VALUE(KPF_OK, 0);
VALUE(KPF_ERROR_ARGUMENT, 1);
VALUE(KPF_ERROR_STRUCT, 2);
VALUE(KPF_ERROR_HANDLE, 3);
VALUE(KPF_ERROR_NAME, 4);
VALUE(KPF_ERROR_EXISTS, 5);
VALUE(KPF_ERROR_OPEN, 6);
VALUE(KPF_ERROR_WRITE, 7);
VALUE(KPF_ERROR_FULL, 8);
VALUE(KPF_ERROR_INCOMPLETE, 9);
VALUE(KPF_ERROR_FORMAT, 10);
VALUE(KPF_ERROR_RANGE, 11);
VALUE(KPF_ERROR_LOST, 12);
VALUE(KPF_ERROR_NOT_READY, 13);
VALUE(KPF_ERROR_MEMORY, 14);
VALUE(KPF_ERROR_INTERNAL, 15);
VALUE(KPF_SAMPLES_VALUE, 0);
VALUE(KPF_SAMPLES_LEFT, 1);
VALUE(KPF_ACCESS_SEQUENTIAL, 0);
VALUE(KPF_ACCESS_SPARSE, 1);
VALUE(KPF_FRAMES_UNKNOWN, 4294967295U);

AT(kpf_writer_options, struct_size, 0);
AT(kpf_writer_options, width, 4);
AT(kpf_writer_options, height, 8);
AT(kpf_writer_options, bits, 12);
AT(kpf_writer_options, frame_rate, 16);
AT(kpf_writer_options, frame_count, 20);
AT(kpf_writer_options, start_seconds, 24);
AT(kpf_writer_options, start_microseconds, 32);
AT(kpf_writer_options, samples, 36);
AT(kpf_writer_options, replace, 40);
AT(kpf_writer_options, durable, 44);
AT(kpf_writer_options, text5, 48);
AT(kpf_writer_options, text2, 56);
AT(kpf_writer_options, value3, 64);
AT(kpf_writer_options, value5, 68);
AT(kpf_writer_options, value7, 72);
AT(kpf_writer_options, reserved, 76);
SIZE(kpf_writer_options, 80);

AT(kpf_stamp, microseconds, 4);
AT(kpf_stamp, seconds, 8);
SIZE(kpf_stamp, 16);

AT(kpf_writer_counts, announced, 4);
AT(kpf_writer_counts, added, 8);
AT(kpf_writer_counts, lost, 12);
AT(kpf_writer_counts, failed, 16);
AT(kpf_writer_counts, refused, 20);
SIZE(kpf_writer_counts, 24);

AT(kpf_reader_options, access, 4);
SIZE(kpf_reader_options, 8);

AT(kpf_recording_info, width, 4);
AT(kpf_recording_info, height, 8);
AT(kpf_recording_info, bits, 12);
AT(kpf_recording_info, frame_rate, 16);
AT(kpf_recording_info, frame_count, 24);
AT(kpf_recording_info, announced, 28);
AT(kpf_recording_info, complete, 32);
AT(kpf_recording_info, frames_per_file, 36);
AT(kpf_recording_info, frame_size, 40);
AT(kpf_recording_info, has_status_file, 48);
AT(kpf_recording_info, value5, 52);
AT(kpf_recording_info, value3, 56);
AT(kpf_recording_info, value7, 64);
AT(kpf_recording_info, text5, 72);
AT(kpf_recording_info, text2, 224);
AT(kpf_recording_info, identifier, 288);
SIZE(kpf_recording_info, 304);

AT(kpf_frame, lost, 4);
AT(kpf_frame, number, 8);
AT(kpf_frame, microseconds, 12);
AT(kpf_frame, seconds, 16);
AT(kpf_frame, pixels, 24);
AT(kpf_frame, pixel_offset, 32);
AT(kpf_frame, file_number, 40);
AT(kpf_frame, reserved, 44);
SIZE(kpf_frame, 48);

AT(kpf_amplifier_options, width, 4);
AT(kpf_amplifier_options, height, 8);
AT(kpf_amplifier_options, reserved, 12);
AT(kpf_amplifier_options, frame_rate, 16);
AT(kpf_amplifier_options, motion_frequency, 24);
AT(kpf_amplifier_options, gain, 32);
SIZE(kpf_amplifier_options, 40);
