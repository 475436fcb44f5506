#include "kpf.h"

/* Every initialiser names every member: no warning, whatever the caller has switched on. */
kpf_writer_options writer_options = KPF_WRITER_OPTIONS_INIT;
kpf_stamp stamp = KPF_STAMP_INIT;
kpf_writer_counts writer_counts = KPF_WRITER_COUNTS_INIT;
kpf_reader_options reader_options = KPF_READER_OPTIONS_INIT;
kpf_recording_info recording_info = KPF_RECORDING_INFO_INIT;
kpf_frame frame = KPF_FRAME_INIT;
kpf_amplifier_options amplifier_options = KPF_AMPLIFIER_OPTIONS_INIT;
