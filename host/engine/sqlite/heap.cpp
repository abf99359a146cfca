#include "host/engine/sqlite/heap.h"

#include <sqlite3.h>

#include "host/engine/sqlite/limit_enforcer.h"

namespace tessera_host {
namespace {

// SQLite's own functions, which do the work. Filled before the first of them is called.
sqlite3_mem_methods own;

void* allocate(int size) {
    LimitEnforcer* const enforcer = LimitEnforcer::current();
    if (enforcer == nullptr) return own.xMalloc(size);
    if (!enforcer->mayAllocate(size)) return nullptr;
    void* const memory = own.xMalloc(size);
    // What is given back is the block's true size, which is never less.
    enforcer->released(memory == nullptr ? size : size - own.xSize(memory));
    if (memory == nullptr) enforcer->setMemoryShort();
    return memory;
}

void release(void* memory) {
    if (LimitEnforcer* const enforcer = LimitEnforcer::current(); enforcer != nullptr && memory != nullptr)
        enforcer->released(own.xSize(memory));
    own.xFree(memory);
}

void* reallocate(void* memory, int size) {
    LimitEnforcer* const enforcer = LimitEnforcer::current();
    if (enforcer == nullptr) return own.xRealloc(memory, size);
    const int before = own.xSize(memory);
    if (!enforcer->mayAllocate(size)) return nullptr;
    void* const moved = own.xRealloc(memory, size);
    enforcer->released(moved == nullptr ? size : size - own.xSize(moved) + before);
    if (moved == nullptr) enforcer->setMemoryShort();
    return moved;
}

// Statistics of its own would take a lock that all threads share, for each allocation.
bool install() noexcept {
    if (sqlite3_config(SQLITE_CONFIG_GETMALLOC, &own) != SQLITE_OK) return false;
    sqlite3_mem_methods bounded = own;
    bounded.xMalloc = allocate;
    bounded.xFree = release;
    bounded.xRealloc = reallocate;
    return sqlite3_config(SQLITE_CONFIG_MALLOC, &bounded) == SQLITE_OK &&
           sqlite3_config(SQLITE_CONFIG_MEMSTATUS, 0) == SQLITE_OK;
}

const bool isInstalled = install();

}  // namespace

bool isHeapBounded() noexcept {
    return isInstalled;
}

}  // namespace tessera_host
