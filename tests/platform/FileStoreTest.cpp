#include "platform/FileStore.h"
#include "platform/FileBytes.h"
#include "platform/FolderLock.h"
#include "support/BitmapFiles.h"
#include "support/TestApp.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <fstream>
#include <functional>
#include <iterator>
#include <pwd.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

namespace fs = std::filesystem;

const std::string OldText = "Start Level = 1\r\nHigh Scores\r\n";
const std::string NewText = "Start Level = 3\r\nMusic = Off\r\nHigh Scores\r\nANN = 5200\r\n";

std::string Read(const fs::path& path)
{
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

std::vector<std::string> Names(const fs::path& folder)
{
    std::vector<std::string> names;
    for (const auto& entry : fs::directory_iterator(folder))
        names.push_back(entry.path().filename().string());
    std::sort(names.begin(), names.end());
    return names;
}

// Runs work in a child process and hands back its exit status; the child ends
// with _exit, so nothing of it is tidied up, as after a kill.
int InChild(const std::function<int()>& work)
{
    const pid_t child = ::fork();
    if (child == 0)
        ::_exit(work());
    int status = 0;
    ::waitpid(child, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

// Work as an ordinary user whom file permissions bind, even where the tests run as root.
int AsOrdinaryUser(const std::function<int()>& work)
{
    return InChild([&] {
        if (::geteuid() == 0) {
            const passwd* nobody = ::getpwnam("nobody");
            if (!nobody || ::setgid(nobody->pw_gid) != 0 || ::setuid(nobody->pw_uid) != 0)
                return 99;
        }
        return work();
    });
}

class SaveFileTest : public ::testing::Test {
protected:
    qvtest::ScopedWorkDir dir;
    void TearDown() override
    {
        Platform::SetSaveStepHook(nullptr);
        Platform::SetFileWriteHandler(nullptr);
    }
};

// A save killed at any point leaves the old file or the new one, never a
// mixture; the next start removes what the killed save left beside it.
TEST_F(SaveFileTest, ASaveKilledAtAnyStepLeavesTheOldOrTheNewFileAndNoLeftoverAfterTheNextStart)
{
    using Platform::SaveStep;
    struct Case {
        const char* what;
        std::function<void()> arrange;
        const std::string& expected;
    };
    const auto dieAt = [](SaveStep at) {
        return [at] { Platform::SetSaveStepHook([at](SaveStep step) { if (step == at) ::_exit(0); }); };
    };
    const Case cases[] = {
        {"half written", [] { Platform::SetFileWriteHandler([](int fd, const void* data, std::size_t size) -> long {
             if (::write(fd, data, size / 2) > 0)
                 ::_exit(0);
             return -1;
         }); }, OldText},
        {"temporary made", dieAt(SaveStep::TemporaryMade), OldText},
        {"written", dieAt(SaveStep::Written), OldText},
        {"flushed", dieAt(SaveStep::Flushed), OldText},
        {"closed", dieAt(SaveStep::Closed), OldText},
        {"renamed", dieAt(SaveStep::Renamed), NewText},
    };
    for (const Case& c : cases) {
        qvtest::WriteFile("quelvarion.ini", OldText);
        const int status = InChild([&] {
            c.arrange();
            Platform::SaveFile("quelvarion.ini", NewText);
            return 1; // the save should have been cut short
        });
        EXPECT_EQ(status, 0) << c.what;
        EXPECT_EQ(Read("quelvarion.ini"), c.expected) << c.what;
        Platform::RemoveInterruptedSaves("quelvarion.ini");
        EXPECT_EQ(Names("."), std::vector<std::string>{"quelvarion.ini"}) << c.what;
    }
}

// A link stays a link, and a hard-linked file keeps every name: the contents
// go to the file they lead to, with its permissions.
TEST_F(SaveFileTest, LinksStayAndTheFileTheyLeadToGetsTheContentsWithItsPermissions)
{
    fs::create_directories("kept/deeper");
    qvtest::WriteFile("kept/deeper/real.ini", OldText);
    fs::permissions("kept/deeper/real.ini", fs::perms(0640));
    fs::create_symlink("deeper/real.ini", "kept/step.ini"); // a chain of relative links
    fs::create_symlink("kept/step.ini", "quelvarion.ini");
    EXPECT_EQ(Platform::SaveFile("quelvarion.ini", NewText), S_OK);
    EXPECT_TRUE(fs::is_symlink("quelvarion.ini"));
    EXPECT_TRUE(fs::is_symlink("kept/step.ini"));
    EXPECT_EQ(Read("kept/deeper/real.ini"), NewText);
    EXPECT_EQ(fs::status("kept/deeper/real.ini").permissions(), fs::perms(0640));
    EXPECT_EQ(Names("kept/deeper"), std::vector<std::string>{"real.ini"});

    // A link to a file not there yet makes it, as creating the file would.
    fs::create_symlink("kept/new.ini", "other.ini");
    EXPECT_EQ(Platform::SaveFile("other.ini", NewText), S_OK);
    EXPECT_EQ(Read("kept/new.ini"), NewText);

    // Leftovers are looked for beside the target; live saves and other files stay.
    qvtest::WriteFile("kept/deeper/real.ini.4194305.tmp", OldText);
    qvtest::WriteFile("kept/deeper/real.ini." + std::to_string(::getpid()) + ".tmp", OldText);
    qvtest::WriteFile("kept/deeper/real.ini.backup.tmp", OldText);
    EXPECT_EQ(Platform::RemoveInterruptedSaves("quelvarion.ini"), 1);
    EXPECT_EQ(Names("kept/deeper").size(), 3u);

    qvtest::WriteFile("hard.ini", OldText);
    fs::create_hard_link("hard.ini", "backup.ini");
    EXPECT_EQ(Platform::SaveFile("hard.ini", NewText), S_OK);
    EXPECT_EQ(Read("backup.ini"), NewText);
    EXPECT_EQ(Names("."), (std::vector<std::string>{"backup.ini", "hard.ini", "kept", "other.ini", "quelvarion.ini"}));
}

TEST_F(SaveFileTest, AReadOnlyFileIsLeftAloneAndAFolderWithoutRoomForATemporaryFileIsWrittenInPlace)
{
    fs::permissions(dir.Path(), fs::perms::all); // the ordinary user's folder
    qvtest::WriteFile("quelvarion.ini", OldText);
    fs::permissions("quelvarion.ini", fs::perms(0444));
    EXPECT_EQ(AsOrdinaryUser([] { return Platform::SaveFile("quelvarion.ini", NewText) == ERROR_FILE_READ_ONLY ? 0 : 1; }), 0);
    EXPECT_EQ(Read("quelvarion.ini"), OldText);

    // The temporary file's place is taken, as in a folder that allows no new
    // files: the file itself is overwritten, keeping its identity.
    fs::permissions("quelvarion.ini", fs::perms(0644));
    const std::string temporary = "quelvarion.ini." + std::to_string(::getpid()) + ".tmp";
    fs::create_directory(temporary);
    const auto inode = [] { struct stat s {}; ::stat("quelvarion.ini", &s); return s.st_ino; };
    const auto before = inode();
    EXPECT_EQ(Platform::SaveFile("quelvarion.ini", NewText), S_OK);
    EXPECT_EQ(Read("quelvarion.ini"), NewText);
    EXPECT_EQ(inode(), before);

    // A write in place that fails part-way puts the old contents back.
    const std::string twice = OldText + OldText;
    qvtest::WriteFile("quelvarion.ini", twice);
    Platform::SetFileWriteHandler([&](int fd, const void* data, std::size_t size) -> long {
        if (size == twice.size())
            return ::write(fd, data, size); // putting the old contents back
        if (::write(fd, data, size / 2) >= 0)
            errno = ENOSPC;
        return -1;
    });
    EXPECT_EQ(Platform::SaveFile("quelvarion.ini", NewText), ERROR_DISK_FULL);
    EXPECT_EQ(Read("quelvarion.ini"), twice);
}

// Whatever stands where a file should be is refused for what it is, without
// waiting on it (a pipe nobody writes) and without being changed.
TEST_F(SaveFileTest, WhatIsNoOrdinaryFileIsRefusedForWhatItIs)
{
    fs::create_directory("folder.ini");
    ASSERT_EQ(::mkfifo("pipe.ini", 0644), 0);
    qvtest::WriteFile("file", OldText);
    {
        std::ofstream huge("huge.ini");
        huge.seekp(static_cast<std::streamoff>(Platform::MaxTextFileBytes) + 1);
        huge.put('\n');
    }
    const struct {
        const char* path;
        Result read;
        Result save;
    } cases[] = {
        {"folder.ini", ERROR_DIRECTORY, ERROR_DIRECTORY},
        {"pipe.ini", ERROR_BAD_FILE_TYPE, ERROR_BAD_FILE_TYPE},
        {"/dev/zero", ERROR_BAD_FILE_TYPE, ERROR_BAD_FILE_TYPE},
        {"huge.ini", ERROR_FILE_TOO_LARGE, S_OK},
        {"missing/quelvarion.ini", ERROR_PATH_NOT_FOUND, ERROR_PATH_NOT_FOUND},
        {"file/quelvarion.ini", ERROR_BAD_PATHNAME, ERROR_BAD_PATHNAME},
    };
    for (const auto& c : cases) {
        std::string text;
        EXPECT_EQ(Platform::ReadFileCreating(c.path, text), c.read) << c.path;
        EXPECT_TRUE(text.empty()) << c.path;
        if (c.save != S_OK) {
            EXPECT_EQ(Platform::SaveFile(c.path, NewText), c.save) << c.path;
        }
    }
    EXPECT_EQ(Names("."), (std::vector<std::string>{"file", "folder.ini", "huge.ini", "pipe.ini"}));
}

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
