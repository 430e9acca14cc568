#pragma once
#include "app/Comforts.h"
#include "platform/FolderLock.h"
#include "platform/Scaling.h"
#include "platform/Volume.h"
#include "platform/Window.h"

class CGameApp;
class CReplayExport;
class CReplayShow;

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

// What one start of the program comes to.
enum class LaunchAction { Play, ShowHelp, ShowVersion, BadUsage, WatchReplay, VerifyReplay, ExportReplay };

// The command line, read.
struct LaunchRequest {
    LaunchAction action = LaunchAction::Play;
    std::string error; // why the command line was refused
    bool trace = false;
    std::optional<Platform::WindowMode> windowMode; // --windowed or --fullscreen
    std::optional<ScaleMode> scaleMode;             // --scale
    std::string recordFile;                          // --record: where the game is kept as well
    std::string replayFile;                          // --replay or --verify: the replay to play
    double fromSeconds = 0.0;                        // --from: where watching starts, in recorded seconds
    std::int32_t fromLevel = 0;                      // --level: the level watching starts at
    std::string videoFile;                           // --export: the video to write
    std::int32_t videoWidth = 0;                     // --size: the video's, 0 for the game's own
    std::int32_t videoHeight = 0;
};

// Everything settled before the application object is built: the command
// line, whether the folder the game runs in holds its data, and the folder's
// lock. A run that is to be no game ends in the constructor, having touched
// nothing. A game's launch holds the lock until the program ends.
class CLaunch {
public:
    static constexpr int HelpStatus = 0;
    static constexpr int RefusedStatus = 1;
    static constexpr int UsageStatus = 2;
    static constexpr const char* WindowModeFolder = "quelvarion";
    static constexpr const char* WindowModeFileName = "window-mode";

    explicit CLaunch(const std::vector<std::string>& arguments);
    ~CLaunch();
    CLaunch(const CLaunch&) = delete;
    CLaunch& operator=(const CLaunch&) = delete;

    static LaunchRequest ReadCommandLine(const std::vector<std::string>& arguments);
    const LaunchRequest& GetRequest() const { return request; }
    // Sets the application up for what the command line asked: a replay
    // shown, or the game recorded to a file as well. A replay that cannot be
    // read ends the program.
    void Prepare(CGameApp& app);
    static std::string UsageText();
    static std::string VersionText();
    // The game's data: its sprite catalogue or its art folder.
    static bool HoldsGameData(const std::string& folder);

    // The window mode the player last chose with Alt+Enter, kept in a file of
    // its own under the configuration folder. Empty when there is none.
    static std::string WindowModePath();
    static std::optional<Platform::WindowMode> ReadWindowMode(const std::string& path);
    static void RememberWindowMode(const std::string& path, Platform::WindowMode mode);

    // The comforts file's line for a channel's volume, and the step a value
    // names (a whole number from 0 to the top step), if any.
    static std::string VolumeComfortName(VolumeChannel channel);
    static std::optional<int> VolumeNamed(const std::string& text);

private:
    // Says why the game cannot run here, on stderr and in a box, and ends the program.
    [[noreturn]] static void Refuse(const std::string& problem);
    // Checks a replay in a game of its own, in a scratch folder so that no
    // file of the player's is touched, and ends the program with its verdict.
    [[noreturn]] static void VerifyAndExit(const std::string& file);

    // The comforts file's mode unless the command line says otherwise; the
    // scaling key's choice is remembered there.
    void TakeScaleMode();
    // The comforts file's volumes, full where it names none; the volume keys'
    // steps are remembered there.
    void TakeVolumes();

    LaunchRequest request;
    std::shared_ptr<CComforts> comforts = std::make_shared<CComforts>();
    // Made before the application and gone after it, as the show must be.
    std::unique_ptr<CReplayShow> replayShow;
    std::unique_ptr<CReplayExport> replayExport;

    CFolderLock lock;
};
