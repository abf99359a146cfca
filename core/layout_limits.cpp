#include "core/layout_limits.h"

#include <atomic>

namespace tessera_1 {
namespace {

std::atomic<std::size_t> maxElements{LayoutLimits().maxElements};
std::atomic<std::size_t> maxIdBytes{LayoutLimits().maxIdBytes};

}  // namespace

void setLayoutLimits(const LayoutLimits& limits) {
    maxElements = limits.maxElements;
    maxIdBytes = limits.maxIdBytes;
}

LayoutLimits layoutLimits() {
    return {maxElements, maxIdBytes};
}

}  // namespace tessera_1
