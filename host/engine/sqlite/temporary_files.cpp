#include "host/engine/sqlite/temporary_files.h"

#include <sqlite3.h>

#include <algorithm>
#include <new>

#include "host/engine/sqlite/limit_enforcer.h"

namespace tessera_host {
namespace {

sqlite3_vfs* systemFiles = nullptr;

// SQLite gives storage for this, and after it for the file of the system. It aligns that for pointers and 64-bit
// integers only.
struct TemporaryFile {
    sqlite3_file base{};     // what SQLite sees
    sqlite3_int64 size = 0;  // bytes written so far, as they count for the limit

    sqlite3_file* file() { return reinterpret_cast<sqlite3_file*>(this + 1); }
};

TemporaryFile& temporary(sqlite3_file* file) {
    return *reinterpret_cast<TemporaryFile*>(file);
}

int closeFile(sqlite3_file* file) {
    TemporaryFile& self = temporary(file);
    if (LimitEnforcer* const enforcer = LimitEnforcer::current()) enforcer->releasedTemporary(self.size);
    return self.file()->pMethods->xClose(self.file());
}

int writeFile(sqlite3_file* file, const void* data, int count, sqlite3_int64 offset) {
    TemporaryFile& self = temporary(file);
    const sqlite3_int64 size = std::max(self.size, offset + count);
    if (LimitEnforcer* const enforcer = LimitEnforcer::current())
        if (!enforcer->mayWriteTemporary(size - self.size)) return SQLITE_FULL;
    self.size = size;
    return self.file()->pMethods->xWrite(self.file(), data, count, offset);
}

int truncateFile(sqlite3_file* file, sqlite3_int64 size) {
    TemporaryFile& self = temporary(file);
    if (LimitEnforcer* const enforcer = LimitEnforcer::current(); enforcer != nullptr && size < self.size)
        enforcer->releasedTemporary(self.size - size);
    self.size = std::min(self.size, size);
    return self.file()->pMethods->xTruncate(self.file(), size);
}

// Calls the method of the system's file.
template <auto method, class... Arguments>
int forward(sqlite3_file* file, Arguments... arguments) {
    sqlite3_file* const own = temporary(file).file();
    return (own->pMethods->*method)(own, arguments...);
}

using Methods = sqlite3_io_methods;
// Version 1: neither shared nor mapped memory, of which temporary files have no need.
constexpr Methods methods{1,
                          closeFile,
                          forward<&Methods::xRead, void*, int, sqlite3_int64>,
                          writeFile,
                          truncateFile,
                          forward<&Methods::xSync, int>,
                          forward<&Methods::xFileSize, sqlite3_int64*>,
                          forward<&Methods::xLock, int>,
                          forward<&Methods::xUnlock, int>,
                          forward<&Methods::xCheckReservedLock, int*>,
                          forward<&Methods::xFileControl, int, void*>,
                          forward<&Methods::xSectorSize>,
                          forward<&Methods::xDeviceCharacteristics>,
                          nullptr,
                          nullptr,
                          nullptr,
                          nullptr,
                          nullptr,
                          nullptr};

// Other files than temporary ones are the system's own.
int openFile(sqlite3_vfs*, const char* name, sqlite3_file* file, int flags, int* outFlags) {
    constexpr int temporaryKinds =
        SQLITE_OPEN_TEMP_DB | SQLITE_OPEN_TRANSIENT_DB | SQLITE_OPEN_TEMP_JOURNAL | SQLITE_OPEN_SUBJOURNAL;
    if ((flags & temporaryKinds) == 0) return systemFiles->xOpen(systemFiles, name, file, flags, outFlags);
    auto* const self = new (file) TemporaryFile;
    self->file()->pMethods = nullptr;
    const int code = systemFiles->xOpen(systemFiles, name, self->file(), flags, outFlags);
    // SQLite closes every file that has methods, also one that could not be opened.
    if (self->file()->pMethods != nullptr) self->base.pMethods = &methods;
    return code;
}

const char* registerFileSystem() {
    systemFiles = sqlite3_vfs_find(nullptr);
    if (systemFiles == nullptr) return nullptr;
    static sqlite3_vfs bounded = *systemFiles;
    bounded.zName = "tessera-bounded";
    bounded.szOsFile += static_cast<int>(sizeof(TemporaryFile));
    bounded.pNext = nullptr;
    bounded.xOpen = openFile;
    return sqlite3_vfs_register(&bounded, 0) == SQLITE_OK ? bounded.zName : nullptr;
}

}  // namespace

const char* boundedFileSystem() {
    static const char* const name = registerFileSystem();
    return name;
}

}  // namespace tessera_host
