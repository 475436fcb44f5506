// From which size on an image is packed by more than one thread.
#ifndef VX_PACKING_TEAM_H
#define VX_PACKING_TEAM_H

#include <cstddef>

namespace VX_KPF_PACKED {

/// Below this, which one thread packs in half a millisecond, a team costs more than it brings: it
/// waits for its last member, whom other work may keep from its core for much longer.
inline constexpr std::size_t kTeamPixels = std::size_t{4} << 20;

}  // namespace VX_KPF_PACKED

#endif
