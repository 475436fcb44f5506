// The two tables behind the handles. What is left in them at the end is destroyed, the amplifiers
// before the streams; the tables themselves never are.
#ifndef VLM_INTERNAL_TABLES_H
#define VLM_INTERNAL_TABLES_H

#include "interface/handle_table.h"
#include "motionampl/vx_kpf_motionampl.h"
#include "stream/vx_stream_kpf_packed.h"

namespace VLM_INTERNAL {

extern HandleTable<VLM_KPF::VxKPFPackedStream>& streamVector;
extern HandleTable<VLM_KPF::VxKPFMotionAmpl>& maVector;

}  // namespace VLM_INTERNAL

#endif
