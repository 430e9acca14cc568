#include "platform/FolderLock.h"
#include "support/TestApp.h"

#include <gtest/gtest.h>

#include <csignal>
#include <sys/wait.h>
#include <unistd.h>

namespace {

TEST(FolderLock, OneHolderAtATimeAndTheSystemLetsGoOfAKilledHolder)
{
    qvtest::ScopedWorkDir dir;
    {
        CFolderLock first;
        CFolderLock second;
        EXPECT_EQ(first.Take("."), CFolderLock::Held);
        EXPECT_EQ(second.Take("."), CFolderLock::HeldElsewhere);
        first.Release();
        EXPECT_EQ(second.Take("."), CFolderLock::Held);
    }

    // Another program holds the folder until it is killed, with no chance to tidy up.
    int ready[2];
    ASSERT_EQ(::pipe(ready), 0);
    const pid_t holder = ::fork();
    if (holder == 0) {
        CFolderLock lock;
        const char held = lock.Take(".") == CFolderLock::Held ? 'y' : 'n';
        if (::write(ready[1], &held, 1) == 1)
            ::pause();
        ::_exit(0);
    }
    char held = 0;
    ASSERT_EQ(::read(ready[0], &held, 1), 1);
    EXPECT_EQ(held, 'y');
    CFolderLock mine;
    EXPECT_EQ(mine.Take("."), CFolderLock::HeldElsewhere);
    ::kill(holder, SIGKILL);
    ::waitpid(holder, nullptr, 0);
    EXPECT_EQ(mine.Take("."), CFolderLock::Held);
    ::close(ready[0]);
    ::close(ready[1]);
}

} // namespace
