#pragma once

// The on-screen side of one game object.
class CSpriteInstance {
public:
    virtual ~CSpriteInstance() = default;
};
