#include "given_back_arrays.h"

#include <algorithm>
#include <cstdlib>
#include <memory>

#include <malloc.h>

namespace
{

QByteArrayView watched;
int found = 0;

std::size_t sizeOf(void *memory)
{
#ifdef Q_OS_WIN
    return ::_msize(memory);
#else
    return ::malloc_usable_size(memory);
#endif
}

void inspect(void *memory)
{
    const QByteArrayView bytes(static_cast<const char *>(memory), static_cast<qsizetype>(sizeOf(memory)));
    // Its end, which is the last to be overwritten.
    found += !watched.isEmpty() && bytes.contains(watched.last(8)) ? 1 : 0;
}

} // namespace

// Whatever this program gives back as an array is looked at before.
void *operator new[](std::size_t size)
{
    void *memory = std::calloc(1, size == 0 ? 1 : size);
    if (memory == nullptr) {
        std::abort();
    }
    return memory;
}

void operator delete[](void *memory) noexcept
{
    if (memory != nullptr) {
        inspect(memory);
    }
    std::free(memory);
}

void operator delete[](void *memory, std::size_t) noexcept
{
    operator delete[](memory);
}

namespace quillmar::test
{

GivenBackArrays::GivenBackArrays(QByteArrayView text)
{
    watched = text;
    found = 0;
}

GivenBackArrays::~GivenBackArrays()
{
    watched = {};
}

int GivenBackArrays::count() const
{
    return found;
}

void GivenBackArrays::giveBack(QByteArrayView text)
{
    const auto plain = std::make_unique<char[]>(static_cast<std::size_t>(text.size()));
    std::copy(text.begin(), text.end(), plain.get());
    // A copy that is read by nobody is left out by an optimising compiler.
    asm volatile("" : : "r"(plain.get()) : "memory");
}

} // namespace quillmar::test
