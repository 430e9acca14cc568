#include "FuzzTargets.h"

extern "C" int LLVMFuzzerInitialize(int*, char***)
{
    qvfuzz::StartGame();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    return qvfuzz::FuzzSpriteCatalogue(data, size);
}
