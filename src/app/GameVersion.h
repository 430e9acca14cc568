#pragma once

// The version of the game this program is: the release, and the commit it
// was built from where the build knew one.
const char* GameVersion();
