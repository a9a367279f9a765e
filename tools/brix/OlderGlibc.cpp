// What libraries of this system want of its C library and an older one has not: the program of a release runs there, too.
#include <cstddef>
#include <cstdlib>

#include <sys/random.h>

/// Random bytes, since glibc 2.36. The XML parser of Cairo's fonts wants them against texts made to be slow.
extern "C" void arc4random_buf(void* bytes, std::size_t count)
{
    auto* next = static_cast<char*>(bytes);
    while (count > 0) {
        const ssize_t got = getrandom(next, count, 0);
        if (got <= 0) std::abort();
        next += got;
        count -= static_cast<std::size_t>(got);
    }
}
