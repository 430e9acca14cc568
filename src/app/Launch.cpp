#include "app/Launch.h"

#include "app/ComfortNotice.h"
#include "app/GameApp.h"
#include "app/GameVersion.h"
#include "app/ReplayExport.h"
#include "app/ReplayShow.h"
#include "frontend/MenuSystem.h"
#include "platform/AudioDevice.h"
#include "platform/Clock.h"
#include "platform/CommandLine.h"
#include "platform/Console.h"
#include "platform/Ending.h"
#include "platform/FileStore.h"
#include "platform/MessageBox.h"
#include "platform/UserDirs.h"
#include "platform/Volume.h"

#include <algorithm>
#include <cctype>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <sys/stat.h>
#include <unistd.h>

namespace {

namespace fs = std::filesystem;

constexpr const char* WindowedWord = "windowed";
constexpr const char* FullScreenWord = "fullscreen";

const std::vector<OptionSpec>& Options()
{
    static const std::vector<OptionSpec> options{
        {"help", "", "show this help and exit"},
        {"version", "", "show the version and exit"},
        {"windowed", "", "start in a 1024 x 768 window"},
        {"fullscreen", "", "start over the whole screen"},
        {"scale", "MODE", "how the picture fills the screen: integer, smooth or sharp"},
        {"trace", "", "write the trace, each line timed, to stderr"},
        {"record", "FILE", "play, and keep the game in FILE as a replay"},
        {"replay", "FILE", "watch the game kept in FILE (Escape stops, Space pauses)"},
        {"from", "SECONDS", "with --replay: start watching SECONDS into the game"},
        {"level", "N", "with --replay: start watching where level N began"},
        {"export", "VIDEO", "--export VIDEO REPLAY: write REPLAY as an MP4 video with sound, and exit"},
        {"size", "WxH", "with --export: the video's size (the game's 1024x768 by default)"},
        {"verify", "FILE", "check FILE's game without a window; exit 0 if it plays as recorded"},
    };
    return options;
}

// --from and --level: where a replay watched starts. False, with the request
// refused, for a value that is no such place.
bool ReadStart(const CCommandLine& line, LaunchRequest& request)
{
    const auto refuse = [&request](const std::string& why) {
        request.action = LaunchAction::BadUsage;
        request.error = why;
        return false;
    };
    if ((line.Has("from") || line.Has("level")) && !line.Has("replay"))
        return refuse("--from and --level go with --replay");
    if (line.Has("from")) {
        const std::string text = line.Value("from");
        char* end = nullptr;
        const double seconds = std::strtod(text.c_str(), &end);
        if (text.empty() || *end != '\0' || !(seconds >= 0.0) || seconds > CReplayShow::LongestStartSeconds)
            return refuse("--from takes a number of seconds, not \"" + text + "\"");
        request.fromSeconds = seconds;
    }
    if (line.Has("level")) {
        const std::string text = line.Value("level");
        char* end = nullptr;
        const long level = std::strtol(text.c_str(), &end, 10);
        if (text.empty() || *end != '\0' || level < 1 || level > CReplayShow::HighestStartLevel)
            return refuse("--level takes a level number from 1, not \"" + text + "\"");
        request.fromLevel = static_cast<std::int32_t>(level);
    }
    return true;
}

// The replay named after --export's video, taken out of the arguments: the
// one word the command line has that belongs to no option.
std::string TakeExportedReplay(std::vector<std::string>& arguments)
{
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        const std::string& a = arguments[i];
        const std::size_t replayAt = a == "--export" ? i + 2 : a.rfind("--export=", 0) == 0 ? i + 1 : 0;
        if (replayAt == 0 || replayAt >= arguments.size() || arguments[replayAt].rfind("--", 0) == 0)
            continue;
        const std::string replay = arguments[replayAt];
        arguments.erase(arguments.begin() + static_cast<std::ptrdiff_t>(replayAt));
        return replay;
    }
    return "";
}

// --export VIDEO REPLAY and --size WxH.
bool ReadExport(const CCommandLine& line, const std::string& replay, LaunchRequest& request)
{
    const auto refuse = [&request](const std::string& why) {
        request.action = LaunchAction::BadUsage;
        request.error = why;
        return false;
    };
    if (line.Has("size") && !line.Has("export"))
        return refuse("--size goes with --export");
    if (!line.Has("export"))
        return true;
    if (line.Value("export").empty() || replay.empty())
        return refuse("--export takes the video to write and the replay to write it from: --export VIDEO REPLAY");
    request.videoFile = line.Value("export");
    request.replayFile = replay;
    request.windowMode = Platform::WindowMode::Windowed; // the game's own size, on no screen
    if (line.Has("size")) {
        const std::string text = line.Value("size");
        unsigned width = 0, height = 0;
        char end = 0;
        // Even sizes: the video's colour is kept at half resolution.
        if (std::sscanf(text.c_str(), "%ux%u%c", &width, &height, &end) != 2 || width < 16 || height < 16 ||
            width > CReplayExport::LargestSide || height > CReplayExport::LargestSide || width % 2 || height % 2)
            return refuse("--size takes an even width and height such as 1920x1440, not \"" + text + "\"");
        request.videoWidth = static_cast<std::int32_t>(width);
        request.videoHeight = static_cast<std::int32_t>(height);
    }
    return true;
}

std::string CurrentFolder()
{
    std::error_code error;
    const fs::path folder = fs::current_path(error);
    return error ? std::string(".") : folder.string();
}

} // namespace

CLaunch::CLaunch(const std::vector<std::string>& arguments)
{
    Platform::MillisecondsSinceStart(); // the trace's times count from here
    std::signal(SIGPIPE, SIG_IGN);      // a closed terminal must not end the game

    request = ReadCommandLine(arguments);
    // From the first step that can take time: a start is ended as promptly as a game.
    if (request.action == LaunchAction::Play || request.action == LaunchAction::WatchReplay)
        Platform::HearEndingSignals();
    switch (request.action) {
    case LaunchAction::ShowHelp:
        std::fputs(UsageText().c_str(), stdout);
        std::exit(HelpStatus);
    case LaunchAction::ShowVersion:
        std::fputs(VersionText().c_str(), stdout);
        std::exit(HelpStatus);
    case LaunchAction::BadUsage:
        Platform::PrintError(request.error);
        std::fputs(UsageText().c_str(), stderr);
        std::exit(UsageStatus);
    case LaunchAction::VerifyReplay:
        VerifyAndExit(request.replayFile);
    case LaunchAction::ExportReplay:
        // Made unseen and unheard: pictures and sound are pulled, not shown or played.
        ::setenv("SDL_VIDEODRIVER", "dummy", 1);
        ::setenv("SDL_AUDIODRIVER", "dummy", 1);
        CAudioDevice::Instance().SetOffline();
        break;
    case LaunchAction::Play:
    case LaunchAction::WatchReplay:
        break;
    }
    if (request.trace)
        Platform::TraceToStderr();

    const std::string folder = CurrentFolder();
    if (!HoldsGameData("."))
        Refuse("no game data in " + folder + " (neither sprite.ini nor art/ is there); start the game with its "
               "launcher, quelvarion, or from the folder that holds its data");
    // A replay saves nothing, so it may be watched beside a game in play.
    if (request.action == LaunchAction::Play) {
        if (lock.Take(".") == CFolderLock::HeldElsewhere)
            Refuse("the game is already running in " + folder + "; play on in that one, or end it first");
        for (const char* file : {CMenuSystem::SettingsFile, CRecorder::LastGameFile})
            Platform::RemoveInterruptedSaves(file);
    }

    const std::string windowModePath = WindowModePath();
    Platform::SetWindowMode(request.windowMode.value_or(
        ReadWindowMode(windowModePath).value_or(Platform::WindowMode::FullScreen)));
    if (!windowModePath.empty())
        Platform::SetWindowModeListener(
            [windowModePath](Platform::WindowMode mode) { RememberWindowMode(windowModePath, mode); });
    TakeScaleMode();
    TakeVolumes();
}

void CLaunch::TakeScaleMode()
{
    const std::string path = CComforts::Path();
    comforts->Load(path);
    const std::string remembered = comforts->Get("scale");
    const std::optional<ScaleMode> known = Platform::ScaleModeNamed(remembered);
    if (!remembered.empty() && !known)
        Platform::PrintError(path + ": scale \"" + remembered + "\" is none of integer, smooth and sharp");
    Platform::SetScaleMode(request.scaleMode.value_or(known.value_or(ScaleMode::Smooth)));
    Platform::SetScaleModeListener([path, comforts = comforts](ScaleMode mode) {
        comforts->Set("scale", Platform::ScaleModeName(mode));
        comforts->Save(path);
        CComfortNotice::Instance().Show(std::string("Scaling: ") + Platform::ScaleModeName(mode),
                                        Platform::TimeGetTime());
    });
}

std::string CLaunch::VolumeComfortName(VolumeChannel channel)
{
    return std::string("volume-") + Platform::VolumeChannelName(channel);
}

std::optional<int> CLaunch::VolumeNamed(const std::string& text)
{
    const auto digit = [](unsigned char c) { return std::isdigit(c) != 0; };
    if (text.empty() || text.size() > 2 || !std::all_of(text.begin(), text.end(), digit))
        return std::nullopt;
    const int step = std::stoi(text);
    return step <= Platform::VolumeSteps ? std::optional<int>(step) : std::nullopt;
}

void CLaunch::TakeVolumes()
{
    const std::string path = CComforts::Path();
    for (VolumeChannel channel : {VolumeChannel::Music, VolumeChannel::Effects}) {
        const std::string name = VolumeComfortName(channel);
        const std::string remembered = comforts->Get(name);
        const std::optional<int> step = VolumeNamed(remembered);
        if (!remembered.empty() && !step)
            Platform::PrintError(path + ": " + name + " \"" + remembered + "\" is no step from 0 to " +
                                 std::to_string(Platform::VolumeSteps));
        Platform::SetVolume(channel, step.value_or(Platform::VolumeSteps));
    }
    Platform::SetVolumeListener([path, comforts = comforts](VolumeChannel channel, int step) {
        comforts->Set(VolumeComfortName(channel), std::to_string(step));
        comforts->Save(path);
        const std::string what = channel == VolumeChannel::Music ? "Music" : "Effects";
        CComfortNotice::Instance().Show(what + " volume: " + std::to_string(step) + "/" +
                                            std::to_string(Platform::VolumeSteps),
                                        Platform::TimeGetTime());
    });
}

CLaunch::~CLaunch() = default;

LaunchRequest CLaunch::ReadCommandLine(const std::vector<std::string>& given)
{
    LaunchRequest request;
    std::vector<std::string> arguments = given;
    const std::string replayToExport = TakeExportedReplay(arguments);
    const auto line = CCommandLine::Parse(Options(), arguments, request.error);
    if (!line) {
        request.action = LaunchAction::BadUsage;
        return request;
    }
    if (line->Has("windowed") && line->Has("fullscreen")) {
        request.action = LaunchAction::BadUsage;
        request.error = "choose one of --windowed and --fullscreen";
        return request;
    }
    const int replayModes = line->Has("record") + line->Has("replay") + line->Has("verify") + line->Has("export");
    if (replayModes > 1) {
        request.action = LaunchAction::BadUsage;
        request.error = "choose one of --record, --replay, --verify and --export";
        return request;
    }
    if (!ReadExport(*line, replayToExport, request))
        return request;
    if (line->Has("help"))
        request.action = LaunchAction::ShowHelp;
    else if (line->Has("version"))
        request.action = LaunchAction::ShowVersion;
    else if (line->Has("replay"))
        request.action = LaunchAction::WatchReplay;
    else if (line->Has("verify"))
        request.action = LaunchAction::VerifyReplay;
    else if (line->Has("export"))
        request.action = LaunchAction::ExportReplay;
    request.recordFile = line->Value("record");
    if (!line->Has("export"))
        request.replayFile = line->Has("replay") ? line->Value("replay") : line->Value("verify");
    request.trace = line->Has("trace");
    if (line->Has("scale")) {
        request.scaleMode = Platform::ScaleModeNamed(line->Value("scale"));
        if (!request.scaleMode) {
            request.action = LaunchAction::BadUsage;
            request.error = "--scale takes integer, smooth or sharp, not \"" + line->Value("scale") + "\"";
            return request;
        }
    }
    if (!ReadStart(*line, request))
        return request;
    if (line->Has("windowed"))
        request.windowMode = Platform::WindowMode::Windowed;
    else if (line->Has("fullscreen"))
        request.windowMode = Platform::WindowMode::FullScreen;
    return request;
}

std::string CLaunch::UsageText()
{
    return "Usage: quelvarion [OPTION]...\n"
           "Top-down space combat with a ship you fit yourself.\n\n" +
           CCommandLine::OptionsHelp(Options()) +
           "\nAlt+Enter switches between the whole screen and a window; F10 steps\n"
           "through the ways of scaling the picture; F5/F6 turn the effects down/up,\n"
           "F7/F8 the music; the game remembers them all. The game runs in the current folder, which must hold\n"
           "its data; it keeps your options and high scores there, in quelvarion.ini.\n"
           "See quelvarion(6).\n";
}

std::string CLaunch::VersionText()
{
    return std::string("quelvarion ") + GameVersion() + "\n";
}

bool CLaunch::HoldsGameData(const std::string& folder)
{
    std::error_code error;
    return fs::is_regular_file(fs::path(folder) / "sprite.ini", error) || fs::is_directory(fs::path(folder) / "art", error);
}

std::string CLaunch::WindowModePath()
{
    const std::string config = Platform::ConfigHome();
    return config.empty() ? "" : config + "/" + WindowModeFolder + "/" + WindowModeFileName;
}

std::optional<Platform::WindowMode> CLaunch::ReadWindowMode(const std::string& path)
{
    std::string text;
    if (path.empty() || !fs::exists(path) || Platform::ReadFileCreating(path, text) != S_OK)
        return std::nullopt;
    while (!text.empty() && std::isspace(static_cast<unsigned char>(text.back())))
        text.pop_back();
    if (text == WindowedWord)
        return Platform::WindowMode::Windowed;
    if (text == FullScreenWord)
        return Platform::WindowMode::FullScreen;
    return std::nullopt;
}

void CLaunch::RememberWindowMode(const std::string& path, Platform::WindowMode mode)
{
    // The folders the XDG rules ask for: the configuration home as usual, our own private.
    const fs::path folder = fs::path(path).parent_path();
    std::error_code ignored;
    fs::create_directories(folder.parent_path(), ignored);
    ::mkdir(folder.c_str(), 0700);
    const std::string word = mode == Platform::WindowMode::Windowed ? WindowedWord : FullScreenWord;
    if (const Result saved = Platform::SaveFile(path, word + "\n"); saved != S_OK)
        Platform::PrintError("window mode not remembered in " + path + ": " + Platform::FileProblemText(saved));
}

void CLaunch::Prepare(CGameApp& app)
{
    Platform::SetLastWords([&app] { app.SaveForEnding(); });
    app.keyBindings.Load(*comforts);
    for (const std::string& problem : app.keyBindings.Problems())
        Platform::PrintError(CComforts::Path() + ": " + problem);
    if (const std::string fire = comforts->Get(CPadBindings::FireControlsLine); !fire.empty())
        if (const std::string problem = app.padBindings.TakeFireControls(fire); !problem.empty())
            Platform::PrintError(CComforts::Path() + ": " + CPadBindings::FireControlsLine + ": " + problem +
                                 "; the line is left out");
    if (!request.recordFile.empty())
        app.recorder.SetRecordFile(request.recordFile);
    if (request.action != LaunchAction::WatchReplay && request.action != LaunchAction::ExportReplay)
        return;
    // Before anything can fail: the program's end must not save over the player's files.
    app.KeepPlayersFiles();
    CReplay replay;
    std::string error;
    if (!CReplay::Load(request.replayFile, replay, error)) {
        Platform::PrintError(request.replayFile + ": " + error);
        std::exit(CGameApp::ReplayUnreadableStatus);
    }
    CGameApp::PlaysByOurRules(replay.header, request.replayFile);
    replayShow = std::make_unique<CReplayShow>(app, std::move(replay));
    replayShow->StartAtLevel(request.fromLevel);
    replayShow->StartAtMs(request.fromSeconds * 1000.0);
    if (request.action == LaunchAction::ExportReplay) {
        replayExport = std::make_unique<CReplayExport>(
            CReplayExport::Request{request.videoFile, request.videoWidth, request.videoHeight});
        replayShow->ExportTo(replayExport.get());
    }
    app.SetReplayShow(replayShow.get());
}

void CLaunch::VerifyAndExit(const std::string& file)
{
    Platform::HearEndingSignals(Platform::Listening::WhenAsked); // the check answers them between frames
    std::error_code error;
    const fs::path replay = fs::absolute(file, error);
    std::string scratchName = (fs::temp_directory_path(error) / "quelvarion-verify-XXXXXX").string();
    const char* scratch = error ? nullptr : ::mkdtemp(scratchName.data());
    // Whatever ends the check from the moment its folder exists takes the folder with it.
    const std::string scratchFolder = scratch ? scratch : "";
    Platform::SetLastWords([scratchFolder] {
        std::error_code ignored;
        fs::remove_all(scratchFolder, ignored);
    });
    if (error || !scratch || ::chdir(scratch) != 0) {
        Platform::PrintError("no scratch folder to check the replay in");
        std::exit(CGameApp::ReplaySetupFailedStatus);
    }
    Platform::DisableAudio(); // a check is heard by no one
    int status = 0;
    {
        CGameApp app;
        status = app.VerifyReplayFile(replay.string());
    }
    fs::remove_all(scratch, error);
    std::fflush(stdout);
    std::exit(status);
}

void CLaunch::Refuse(const std::string& problem)
{
    Platform::PrintError(problem);
    Platform::MessageBox(nullptr, "Quelvarion cannot start: " + problem + ".\n", "ERROR", MB_OK);
    std::exit(RefusedStatus);
}
