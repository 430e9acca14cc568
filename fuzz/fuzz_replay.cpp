#include "FuzzTargets.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    return qvfuzz::FuzzReplay(data, size);
}
