// The image of a .kpf header file, built in memory.
#ifndef VX_KPF_HEADER_H
#define VX_KPF_HEADER_H

#include <array>

#include "format/kpf_layout.h"
#include "vlm_configuration.h"

namespace VLM_KPF {

using HeaderImage = std::array<unsigned char, KPF_FORMAT::HEADER::kSize>;

/// Every byte of the header file but the identifiers, which stay zero.
HeaderImage headerImage(const VLM_INTERNAL::VXP_STREAM_CONFIGURATION& configuration,
                        unsigned framesPerDivFile);

}  // namespace VLM_KPF

#endif
