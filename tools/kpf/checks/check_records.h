// The checks of every frame record.
#ifndef KPF_CHECK_RECORDS_H
#define KPF_CHECK_RECORDS_H

#include <cstdint>
#include <functional>

#include "kpf_reader.h"
#include "tools/kpf/checks/findings.h"

namespace KPF_TOOL {

/// Called now and then with the bytes read so far.
using BytesRead = std::function<void(std::uint64_t)>;

/**
 * Reads every byte of the data files, in order, as fast as the disk gives them, and looks at each
 * record: its number, its time against the one before and the frame rate, its unused bytes, and its
 * checksum where one was kept.
 *
 * @return the placeholders among them.
 */
std::uint32_t checkRecords(const KPF_READER::Recording& recording, const BytesRead& bytesRead,
                           Findings& findings);

}  // namespace KPF_TOOL

#endif
