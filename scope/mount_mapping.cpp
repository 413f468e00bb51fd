#include "scope/mount_mapping.h"

#include <utility>

namespace nocturnel {

namespace {
MountMapping& current() {
    static MountMapping mapping;
    return mapping;
}
}  // namespace

void setMountMapping(MountMapping mapping) { current() = std::move(mapping); }
const MountMapping& mountMapping() { return current(); }
void clearMountMapping() { current() = MountMapping{}; }

}  // namespace nocturnel
