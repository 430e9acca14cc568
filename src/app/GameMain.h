#pragma once

class CFrameObserver;

// The program: settles the launch, then runs the one application object until
// the player leaves. A frame observer, where given, sees the recorded frames.
int RunGame(CFrameObserver* frameObserver);
