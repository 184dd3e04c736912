// A library that a test preloads into kelvmenu (LD_PRELOAD) to make the flush of a file to the disk
// fail, as a failing disk or a full network share makes it fail: while KELV_TEST_FAIL_FSYNC is set,
// fsync and fdatasync fail with EIO; otherwise they are the system's own.

#include <dlfcn.h>

#include <cerrno>
#include <cstdlib>

namespace {

using FlushFunction = int (*)(int);

bool failing()
{
    return std::getenv("KELV_TEST_FAIL_FSYNC") != nullptr;
}

int flush(const char* name, int descriptor)
{
    if (failing()) {
        errno = EIO;
        return -1;
    }
    const auto system = reinterpret_cast<FlushFunction>(dlsym(RTLD_NEXT, name));
    return system != nullptr ? system(descriptor) : -1;
}

} // namespace

extern "C" int fsync(int descriptor)
{
    return flush("fsync", descriptor);
}

extern "C" int fdatasync(int descriptor)
{
    return flush("fdatasync", descriptor);
}
