#include "platform/VideoEncoder.h"

#include "platform/FileStore.h"

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

extern char** environ;

namespace {

namespace fs = std::filesystem;

constexpr const char* VideoOnlyFile = "pictures.mp4";
constexpr const char* LogFile = "ffmpeg.log";
// Quality well above what the eye tells from the game's own pictures; the
// preset keeps the encoding faster than the game's real time on two cores.
constexpr const char* Quality = "14";
constexpr const char* Preset = "superfast";
constexpr const char* SoundBitRate = "192k";

} // namespace

CVideoEncoder::~CVideoEncoder()
{
    if (pipe >= 0)
        ::close(pipe);
    if (child > 0) {
        int status = 0;
        ::waitpid(child, &status, 0);
    }
    if (!scratch.empty()) {
        std::error_code ignored;
        fs::remove_all(scratch, ignored);
    }
}

bool CVideoEncoder::Fail(Failure kind, const std::string& why)
{
    if (failure == Failure::None) {
        failure = kind;
        error = why;
    }
    return false;
}

bool CVideoEncoder::Spawn(const std::vector<std::string>& arguments, int* input)
{
    std::vector<char*> argv;
    for (const std::string& a : arguments)
        argv.push_back(const_cast<char*>(a.c_str()));
    argv.push_back(nullptr);
    int ends[2] = {-1, -1};
    if (input && ::pipe2(ends, O_CLOEXEC) != 0)
        return Fail(Failure::Refused, std::string("no pipe to ") + Program + ": " + std::strerror(errno));
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    if (input)
        posix_spawn_file_actions_adddup2(&actions, ends[0], STDIN_FILENO);
    else
        posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
    const std::string log = scratch + "/" + LogFile;
    posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
    posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, log.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
    pid_t pid = 0;
    const int spawned = posix_spawnp(&pid, Program, &actions, nullptr, argv.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    if (input)
        ::close(ends[0]);
    if (spawned != 0) {
        if (input)
            ::close(ends[1]);
        if (spawned == ENOENT)
            return Fail(Failure::NoEncoder, std::string(Program) + " is not installed: install it (Debian's package " +
                                                Package + ") to export videos");
        return Fail(Failure::Refused, std::string("cannot run ") + Program + ": " + std::strerror(spawned));
    }
    child = pid;
    if (input)
        *input = ends[1];
    return true;
}

bool CVideoEncoder::Start(const Settings& wanted)
{
    settings = wanted;
    std::error_code ec;
    std::string name = (fs::temp_directory_path(ec) / "quelvarion-export-XXXXXX").string();
    if (ec || !::mkdtemp(name.data()))
        return Fail(Failure::Refused, "no scratch folder for the export");
    scratch = name;
    const std::string size = std::to_string(settings.width) + "x" + std::to_string(settings.height);
    std::vector<std::string> arguments{Program, "-hide_banner", "-nostdin", "-loglevel", "error", "-f", "rawvideo",
                                       "-pixel_format", "rgb24", "-video_size", size, "-framerate",
                                       std::to_string(settings.framesPerSecond), "-i", "-"};
    if (settings.outWidth != settings.width || settings.outHeight != settings.height)
        arguments.insert(arguments.end(), {"-vf", "scale=" + std::to_string(settings.outWidth) + ":" +
                                                      std::to_string(settings.outHeight) + ":flags=lanczos"});
    arguments.insert(arguments.end(), {"-c:v", "libx264", "-preset", Preset, "-crf", Quality, "-pix_fmt", "yuv420p",
                                       "-y", scratch + "/" + VideoOnlyFile});
    return Spawn(arguments, &pipe);
}

bool CVideoEncoder::WritePicture(const std::vector<std::uint8_t>& rgb)
{
    if (pipe < 0)
        return false;
    if (Platform::WriteAll(pipe, {reinterpret_cast<const char*>(rgb.data()), rgb.size()}))
        return true;
    ::close(pipe);
    pipe = -1;
    Wait("encoding the pictures");
    return Fail(Failure::Refused, std::string(Program) + " stopped taking pictures");
}

std::string CVideoEncoder::LogTail() const
{
    std::ifstream in(scratch + "/" + LogFile);
    std::string line, last;
    while (std::getline(in, line))
        if (!line.empty())
            last = line;
    return last;
}

bool CVideoEncoder::Wait(const char* step)
{
    int status = 0;
    const pid_t pid = child;
    child = -1;
    while (::waitpid(pid, &status, 0) < 0 && errno == EINTR) {
    }
    if (WIFEXITED(status) && WEXITSTATUS(status) == 0)
        return true;
    const std::string said = LogTail();
    return Fail(Failure::Refused, std::string(Program) + " failed " + step + (said.empty() ? "" : ": " + said));
}

bool CVideoEncoder::Finish(const std::string& wavePath)
{
    if (failure != Failure::None)
        return false;
    ::close(pipe);
    pipe = -1;
    if (!Wait("encoding the pictures"))
        return false;
    if (!Spawn({Program, "-hide_banner", "-nostdin", "-loglevel", "error", "-i", scratch + "/" + VideoOnlyFile,
                "-i", wavePath, "-map", "0:v", "-map", "1:a", "-c:v", "copy", "-c:a", "aac", "-b:a", SoundBitRate,
                "-movflags", "+faststart", "-f", "mp4", "-y", settings.path},
               nullptr))
        return false;
    return Wait(("writing " + settings.path).c_str());
}
