#pragma once
#include "platform/Types.h"

// The ship design screen between levels.
class CShipDesigner {
public:
    void Reset() { ++resets; }
    void OnKey(UINT /*key*/, bool /*pressed*/) {}
    int GetResetCount() const { return resets; }

private:
    int resets = 0;
};
