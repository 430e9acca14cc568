// Every test runs headless on SDL's dummy drivers unless told otherwise.
// (CTest's per-test environment keeps only the first of several variables
// handed through test discovery, so the test program sets them itself.)
#include <cstdlib>

namespace {

const bool dummyDrivers = [] {
    setenv("SDL_VIDEODRIVER", "dummy", 0);
    setenv("SDL_AUDIODRIVER", "dummy", 0);
    // Tests run in folders of their own: the tune's instruments are the game's.
    setenv("SDL_SOUNDFONTS", QV_GAME_DIR "/background.sf2", 0);
    return true;
}();

} // namespace
