#include "app/Screenshots.h"

#include "platform/Console.h"
#include "platform/FileStore.h"
#include "platform/PngFile.h"
#include "platform/Surface.h"
#include "platform/UserDirs.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <sys/resource.h>
#include <unistd.h>
#include <utility>

namespace {

namespace fs = std::filesystem;

constexpr int BytesPerPixel = 3;
const std::string SavedWord = "Screenshot: ";
// Past this many pictures in one second something is wrong with the folder.
constexpr int MostPerSecond = 1000;
constexpr int WriterNiceness = 10;

// Each 5-6-5 channel widened to eight bits as the screen widens it, its top
// bits repeated below, so that full white is white and the picture looks
// as it did on the screen.
std::uint8_t Widened(unsigned value, int bits)
{
    return static_cast<std::uint8_t>(value << (8 - bits) | value >> (2 * bits - 8));
}

std::vector<std::uint8_t> RgbOf(const CScreenshots::Frame& frame)
{
    std::vector<std::uint8_t> rgb;
    rgb.reserve(frame.pixels.size() * BytesPerPixel);
    for (const std::uint16_t pixel : frame.pixels)
        rgb.insert(rgb.end(), {Widened(pixel >> 11, 5), Widened(pixel >> 5 & 0x3F, 6), Widened(pixel & 0x1F, 5)});
    return rgb;
}

// The bytes in a file of their own beside the picture's final name, so that
// no half-written picture ever carries a picture's name.
std::string WriteScratch(const std::string& folder, const std::string& bytes, std::string& problem)
{
    std::string path = folder + "/.quelvarion-picture-XXXXXX";
    const int descriptor = ::mkstemp(path.data());
    if (descriptor < 0) {
        problem = std::strerror(errno);
        return "";
    }
    if (!Platform::WriteAll(descriptor, bytes))
        problem = std::strerror(errno);
    if (::close(descriptor) != 0 && problem.empty())
        problem = std::strerror(errno);
    if (!problem.empty()) {
        ::unlink(path.c_str());
        return "";
    }
    return path;
}

} // namespace

CScreenshots::~CScreenshots()
{
    {
        std::lock_guard<std::mutex> guard(lock);
        stopping = true;
    }
    changed.notify_all();
    if (writer.joinable())
        writer.join();
}

std::string CScreenshots::Folder()
{
    const std::string pictures = Platform::PicturesFolder();
    return pictures.empty() ? "." : pictures + "/" + FolderName;
}

std::string CScreenshots::FileName(const std::tm& when, int number)
{
    char stamp[32];
    std::strftime(stamp, sizeof stamp, "%Y-%m-%d %H-%M-%S", &when);
    return std::string("Quelvarion ") + stamp + (number > 1 ? "-" + std::to_string(number) : "") + ".png";
}

void CScreenshots::Take(CSurface& frame)
{
    LockedSurface locked;
    if (frame.Lock(locked) != 0)
        return;
    Frame copy;
    copy.width = frame.GetWidth();
    copy.height = frame.GetHeight();
    copy.when = std::time(nullptr);
    copy.pixels.resize(static_cast<std::size_t>(copy.width) * copy.height);
    const auto* rows = static_cast<const std::uint8_t*>(locked.pixels);
    for (int y = 0; y < copy.height; ++y)
        std::memcpy(copy.pixels.data() + static_cast<std::size_t>(y) * copy.width, rows + y * locked.pitch,
                    static_cast<std::size_t>(copy.width) * sizeof(std::uint16_t));
    frame.Unlock();
    {
        std::lock_guard<std::mutex> guard(lock);
        waiting.push_back(std::move(copy));
        if (!writer.joinable())
            writer = std::thread([this] { WriteWaiting(); });
    }
    changed.notify_all();
}

std::string CScreenshots::Write(const Frame& frame, const std::string& folder)
{
    const std::string failed = "Screenshot not saved: ";
    std::error_code error;
    fs::create_directories(folder, error);
    if (error)
        return failed + error.message();
    const std::string bytes = Platform::PngBytes(RgbOf(frame), frame.width, frame.height);
    if (bytes.empty())
        return failed + "the picture could not be packed";
    std::string problem;
    const std::string scratch = WriteScratch(folder, bytes, problem);
    if (scratch.empty())
        return failed + problem;
    std::tm when{};
    localtime_r(&frame.when, &when);
    // A link never replaces a file: a name another picture took is passed over.
    for (int number = 1; number <= MostPerSecond; ++number) {
        const std::string name = FileName(when, number);
        if (::link(scratch.c_str(), (folder + "/" + name).c_str()) == 0) {
            ::unlink(scratch.c_str());
            return SavedWord + name;
        }
        if (errno != EEXIST) {
            problem = std::strerror(errno);
            break;
        }
    }
    ::unlink(scratch.c_str());
    return failed + (problem.empty() ? "too many pictures this second" : problem);
}

std::vector<std::string> CScreenshots::TakeOutcomes()
{
    std::lock_guard<std::mutex> guard(lock);
    return std::exchange(outcomes, {});
}

void CScreenshots::Finish()
{
    std::unique_lock<std::mutex> guard(lock);
    changed.wait(guard, [this] { return waiting.empty() && !writing; });
}

void CScreenshots::WriteWaiting()
{
    // Behind the frame loop on a busy machine: a picture may wait, a frame may not.
    ::setpriority(PRIO_PROCESS, static_cast<id_t>(::gettid()), WriterNiceness);
    const std::string folder = Folder();
    std::unique_lock<std::mutex> guard(lock);
    for (;;) {
        changed.wait(guard, [this] { return stopping || !waiting.empty(); });
        if (waiting.empty())
            return; // stopping, with every picture written
        Frame frame = std::move(waiting.front());
        waiting.pop_front();
        writing = true;
        guard.unlock();
        std::string outcome = Write(frame, folder);
        if (outcome.rfind(SavedWord, 0) != 0)
            Platform::PrintError(outcome + " (in " + folder + ")");
        guard.lock();
        writing = false;
        outcomes.push_back(std::move(outcome));
        changed.notify_all();
    }
}
