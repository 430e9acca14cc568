#include "support/TestApp.h"

#include "platform/MessageQueue.h"

#include <atomic>
#include <unistd.h>

namespace qvtest {

ScopedWorkDir::ScopedWorkDir()
{
    static std::atomic<int> counter{0};
    previous = std::filesystem::current_path();
    dir = std::filesystem::temp_directory_path() /
          ("qvtest-" + std::to_string(::getpid()) + "-" + std::to_string(counter++));
    std::filesystem::remove_all(dir);
    std::filesystem::create_directories(dir);
    std::filesystem::current_path(dir);
}

ScopedWorkDir::~ScopedWorkDir()
{
    std::error_code ignored;
    std::filesystem::current_path(previous, ignored);
    std::filesystem::remove_all(dir, ignored);
}

std::vector<std::string> TraceRecorder::Texts() const
{
    std::vector<std::string> texts;
    for (const auto& line : lines)
        texts.push_back(line.text);
    return texts;
}

TestApp::TestApp(std::uint32_t seed) : app(std::make_unique<CGameApp>())
{
    // Messages an earlier test left posted (a quit, a close) must not reach this game.
    CMessageQueue::Instance().Clear();
    app->SeedRandom(seed);
}

} // namespace qvtest
