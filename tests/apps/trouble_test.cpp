// Runs that cannot end well: they say why in one line and leave no half file.

#include "run_program.h"

#include <chrono>
#include <csignal>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <thread>

namespace corvane
{
namespace
{
using host::Contains;
using host::ReadBytes;
using host::ScratchFolder;
using host::WriteBytes;

const std::string kSmall = "phantom:size=64x64x48,spacing=4.8x4.8x6.6,noise=0";

// What a shell makes of a line in which $C stands for the program.
Outcome Shell(const ScratchFolder& folder, const std::string& line)
{
    return RunIn(folder, "/bin/bash", {"-c", "C='" CORVANE_PROGRAM "'; S=" + kSmall + "; " + line});
}

// As somebody who may not read and write everything, unlike the one who often runs tests.
const char kAsNobody[] = "if [ $(id -u) = 0 ]; then C=\"setpriv --reuid 65534 --regid 65534 --clear-groups $C\"; fi; ";

// Nobody may have no way to the program itself, nor to the folder.
bool NobodyCanRun(const ScratchFolder& folder)
{
    return Shell(folder, std::string("chmod a+rx .; ") + kAsNobody + "$C --version && ls").code == 0;
}

// Every picture and label file of a folder is whole, as far as its end tells.
void ExpectWholeFiles(const std::string& folder)
{
    for (const auto& entry : std::filesystem::recursive_directory_iterator(folder))
        if (entry.path().extension() == ".png")
        {
            const std::string bytes = ReadBytes(entry.path().string());
            ASSERT_GT(bytes.size(), 12u) << entry.path();
            EXPECT_EQ(bytes.substr(bytes.size() - 8, 4), "IEND") << entry.path();
        }
        else
            EXPECT_TRUE(entry.is_directory()) << entry.path(); // nothing that is temporary
}

TEST(Trouble, PipesAndDevicesAsInputAreRefusedByEveryOption)
{
    const ScratchFolder folder;
    ASSERT_EQ(mkfifo((folder / "pipe").c_str(), 0600), 0);
    for (const char* const path : {"pipe", "/dev/zero"})
        for (const std::string command : {"info PATH", "vr $S --labels PATH -o a.png", "vr $S --palette PATH -o a.png",
                                          "cut $S --polygons PATH -o a.nrrd",
                                          "mpr $S --show-labels --label-colors PATH -o a/", "ve $S --path PATH -o a/"})
        {
            std::string line = "timeout 20 $C " + command;
            line.replace(line.find("PATH"), 4, path);
            ExpectRefusal(Shell(folder, line), 3, std::string(path) + ": cannot be read, it is a pipe or a device");
        }
    EXPECT_EQ(FilesIn(folder.Path()), std::vector<std::string>{"pipe"});
}

TEST(Trouble, WhatMayNotBeReadIsNamed)
{
    const ScratchFolder folder;
    if (!NobodyCanRun(folder))
        GTEST_SKIP() << "no other user can run the program here";
    std::filesystem::permissions(folder.Path(), std::filesystem::perms::all);
    WriteBytes(folder / "locked", "what it holds is not known");
    std::filesystem::permissions(folder / "locked", std::filesystem::perms::none);
    std::filesystem::create_directory(folder / "room");
    WriteBytes(folder / "room/file", "");
    std::filesystem::permissions(folder / "room", std::filesystem::perms::none);
    const auto run = [&](const std::string& line) { return Shell(folder, kAsNobody + line); };
    ExpectRefusal(run("$C info locked"), 3, "locked: cannot be opened");
    ExpectRefusal(run("$C info ."), 3, "locked: cannot be read (Permission denied) and may be a slice");
    ExpectRefusal(run("$C info room"), 3, "room: the folder cannot be read (Permission denied)");
    ExpectRefusal(run("$C info room/file"), 3, "room/file: cannot be read (Permission denied)");
    ExpectRefusal(run("$C vr $S --palette locked -o a.png"), 3, "locked: cannot be read (Permission denied)");
    ExpectRefusal(run("$C vr $S -o room/a.png"), 4, "room/a.png: its folder cannot be written");
    std::filesystem::permissions(folder / "room", std::filesystem::perms::owner_all);
}

TEST(Trouble, AFolderThatCannotBeWrittenIsFoundBeforeAnythingIsComputed)
{
    const ScratchFolder folder;
    if (!NobodyCanRun(folder))
        GTEST_SKIP() << "no other user can run the program here";
    using std::filesystem::perms;
    std::filesystem::permissions(folder.Path(),
                                 perms::owner_read | perms::owner_exec | perms::others_read | perms::others_exec);
    const std::string part = "its folder cannot be written: Permission denied";
    // The input is absent, too, but that is not looked at.
    for (const std::string command :
         {"vr absent -o a.png", "vr absent -o new/", "vr absent --turntable 2 -o new", "ve absent -o a.png",
          "cut absent --polygon 0,0:9,0:9,9 -o a.nrrd", "cut absent --polygon 0,0:9,0:9,9 --preview new"})
        ExpectRefusal(Shell(folder, kAsNobody + ("$C " + command)), 4, part);
    for (const std::string command : {"mpr $S --plane axial -o a.png", "mpr $S -o new", "mip $S -o a.png"})
        ExpectRefusal(Shell(folder, kAsNobody + ("$C " + command)), 4, part);
    std::filesystem::permissions(folder.Path(), perms::owner_all);
    EXPECT_TRUE(FilesIn(folder.Path()).empty());
}

TEST(Trouble, NamesThatCannotBeAreRefused)
{
    const ScratchFolder folder;
    std::filesystem::create_symlink("loop", folder / "loop");
    const std::string longName(300, 'x');
    for (const std::string name : {"loop", "loop/a.png", "absent/a.png"})
        for (const std::string command : {"vr $S --size 32 -o ", "mpr $S --plane axial -o "})
            ExpectRefusal(Shell(folder, "$C " + command + name), 4, name + ": ");
    ExpectRefusal(Shell(folder, "$C vr $S --size 32 -o " + longName + ".png"), 4, "File name too long");
    ExpectRefusal(Shell(folder, "$C vr $S --size 32 --turntable 2 -o loop"), 4, "loop: is no folder");
    ExpectRefusal(Shell(folder, "$C cut $S --polygon 0,0:9,0:9,9 --preview absent/new/"), 4, "folder does not exist");
    EXPECT_EQ(FilesIn(folder.Path()), std::vector<std::string>{"loop"});
}

// No file may grow beyond some kilobytes: as on a full disk.
TEST(Trouble, AFullDiskLeavesNoFileAndTheOldOne)
{
    const ScratchFolder folder, temporary;
    const std::string full = "export TMPDIR='" + temporary.Path() + "'; ulimit -f 1; $C ";
    for (const std::string command :
         {"vr $S --size 200 -o a.png", "vr $S --size 200 --turntable 3 -o new/", "ve $S --size 200 -o a.png",
          "mpr $S --plane axial --zoom 4 -o a.png", "mpr $S --zoom 4 -o new", "mpr $S --format nrrd -o new",
          "mip $S --format png16 --size 200 -o a.png", "cut $S --polygon 0,0:511,0:511,511 --preview new"})
    {
        ExpectRefusal(Shell(folder, full + command), 4, "cannot be written: File too large");
        EXPECT_TRUE(FilesIn(folder.Path()).empty()) << command;
    }
    WriteBytes(folder / "a.png", "old");
    WriteBytes(folder / "a.nii", "old");
    ExpectRefusal(Shell(folder, full + "vr $S --size 200 -o a.png --force"), 4, "a.png: cannot be written");
    ExpectRefusal(Shell(folder, full + "cut $S --polygon 0,0:511,0:511,511 -o a.nii --force"), 4, "a.nii: cannot be");
    EXPECT_EQ(ReadBytes(folder / "a.png"), "old");
    EXPECT_EQ(ReadBytes(folder / "a.nii"), "old");
    EXPECT_EQ(FilesIn(folder.Path()).size(), 2u);
    EXPECT_TRUE(FilesIn(temporary.Path()).empty());
}

TEST(Trouble, OfSeveralPicturesThoseBeforeTheFailureStayWhole)
{
    const ScratchFolder folder;
    std::filesystem::create_directory(folder / "turn_003.png"); // in the way of the third of five
    const std::string command = "$C vr $S --size 32 --turntable 5 -o 'turn_{index}.png' --force";
    ExpectRefusal(Shell(folder, command), 4, "turn_003.png: is a folder"); // seen before anything is written
    EXPECT_EQ(FilesIn(folder.Path()).size(), 1u);
    std::filesystem::remove(folder / "turn_003.png");
    // The third is a device that is full.
    std::filesystem::create_symlink("/dev/full", folder / "turn_003.png");
    ExpectRefusal(Shell(folder, command), 4, "turn_003.png: cannot be written: No space left on device");
    EXPECT_EQ(FilesIn(folder.Path()), (std::vector<std::string>{"turn_001.png", "turn_002.png", "turn_003.png"}));
    std::filesystem::remove(folder / "turn_003.png");
    ExpectWholeFiles(folder.Path());
}

TEST(Trouble, ClosedStreamsSpoilNoFile)
{
    const ScratchFolder folder;
    const Outcome closed = Shell(folder, "$C vr $S --size 32 -o a.png <&- >&-");
    ExpectRefusal(closed, 4, "standard output cannot be written");
    const Outcome silent = Shell(folder, "$C vr $S --size 32 -o b.png <&- 2>&-");
    EXPECT_EQ(silent.code, 0);
    EXPECT_TRUE(Contains(silent.out, "b.png"));
    EXPECT_EQ(Shell(folder, "$C vr $S --size 32 -o c.png <&- >&- 2>&-").code, 4);
    EXPECT_EQ(ReadBytes(folder / "a.png"), ReadBytes(folder / "b.png"));
    EXPECT_EQ(ReadBytes(folder / "a.png"), ReadBytes(folder / "c.png"));
    ExpectWholeFiles(folder.Path());
    EXPECT_EQ(Shell(folder, "$C info nothing >/dev/full 2>/dev/full").code, 3);
}

TEST(Trouble, APipeThatNobodyReadsIsAnErrorOfWriting)
{
    const ScratchFolder folder;
    const auto unread = [&](const std::string& command)
    { return Shell(folder, "exec 3> >(exec true); sleep 0.1; " + command + " >&3"); };
    ExpectRefusal(unread("$C info $S"), 4, "standard output cannot be written");
    ExpectRefusal(unread("$C vr $S --size 32 -o -"), 4, "standard output: cannot be written: Broken pipe");
    // Messages that nobody reads do not keep a picture from being made.
    const Outcome unheard =
        Shell(folder, "exec 3> >(exec true); sleep 0.1; $C vr $S --label-palette 60:bone --size 32 -o a.png 2>&3");
    EXPECT_EQ(unheard.code, 0);
    ExpectWholeFiles(folder.Path());
}

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr bool kLimitsMeanSomething = false; // sanitizers take terabytes of addresses
#elif defined(__has_feature)
#if __has_feature(address_sanitizer) || __has_feature(thread_sanitizer)
constexpr bool kLimitsMeanSomething = false;
#else
constexpr bool kLimitsMeanSomething = true;
#endif
#else
constexpr bool kLimitsMeanSomething = true;
#endif

TEST(Trouble, TooLittleMemoryEndsInOneLine)
{
    if (!kLimitsMeanSomething)
        GTEST_SKIP() << "memory cannot be limited under this sanitizer";
    const ScratchFolder folder;
    int refused = 0;
    for (const std::string command : {"info", "vr --size 512 -o a.png", "mip --size 512 -o a.png", "ve -o a.png",
                                      "cut --polygon 0,0:511,0:511,511 -o a.nrrd"})
        for (int megabytes : {45, 60, 75, 85})
        {
            const Outcome outcome = Shell(folder, "ulimit -v " + std::to_string(megabytes * 1024) + "; $C " + command +
                                                      " phantom:size=256x256x200,noise=0");
            if (outcome.code == 0 || Contains(outcome.err, "shared libraries"))
                continue; // enough for all, or not for the program itself
            ExpectRefusal(outcome, 5, "memory");
            EXPECT_TRUE(FilesIn(folder.Path()).empty());
            ++refused;
        }
    EXPECT_GT(refused, 0);
}

TEST(Trouble, WithoutAnyThreadPicturesAreMadeAllTheSame)
{
    const ScratchFolder folder;
    if (!kLimitsMeanSomething || !NobodyCanRun(folder))
        GTEST_SKIP() << "threads cannot be refused here";
    const std::string render = "$C vr $S --size 64 -o ";
    ASSERT_EQ(Shell(folder, "chmod a+rwx .; " + render + "with.png").code, 0);
    const Outcome without = Shell(folder, kAsNobody + ("ulimit -u 1; exec " + render + "without.png"));
    EXPECT_EQ(without.code, 0) << without.err;
    EXPECT_EQ(ReadBytes(folder / "with.png"), ReadBytes(folder / "without.png"));
}

// When to send a signal: after some milliseconds, or below 0 when the first picture has come into the folder "new".
using Moment = int;

void WaitFor(Moment moment, const std::string& folder)
{
    std::this_thread::sleep_for(std::chrono::milliseconds(std::max(moment, 0)));
    for (int round = 0; moment < 0 && round < 3000; ++round)
    {
        std::error_code absent;
        std::filesystem::directory_iterator files(folder + "/new", absent);
        if (!absent && files != std::filesystem::directory_iterator())
            return;
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
}

// Runs the program in a folder and sends it a signal.
struct Interrupted
{
    bool ended = false; // by itself, before the signal came
    int signal = 0;     // by which it ended
    std::string err;
};

Interrupted Interrupt(const ScratchFolder& folder, const ScratchFolder& temporary,
                      const std::vector<std::string>& words, int signal, Moment moment)
{
    std::vector<std::string> all = {CORVANE_PROGRAM};
    all.insert(all.end(), words.begin(), words.end());
    std::vector<char*> arguments;
    for (std::string& word : all)
        arguments.push_back(word.data());
    arguments.push_back(nullptr);
    const ScratchFolder streams;
    const std::string messages = streams / "err", work = folder.Path();
    MakeFfmpeg(streams, kKeepFilm);
    const std::string variable = "TMPDIR=" + temporary.Path(),
                      path = "PATH=" + (streams / "bin") + ":" + std::string(std::getenv("PATH"));
    char* environment[] = {const_cast<char*>(variable.c_str()), const_cast<char*>(path.c_str()), nullptr};
    const pid_t process = fork();
    if (process == 0)
    {
        const int err = open(messages.c_str(), O_WRONLY | O_CREAT, 0600), nothing = open("/dev/null", O_RDWR);
        if (err < 0 || dup2(nothing, 0) < 0 || dup2(nothing, 1) < 0 || dup2(err, 2) < 0 || chdir(work.c_str()) != 0)
            _exit(99);
        execve(arguments[0], arguments.data(), environment);
        _exit(99);
    }
    WaitFor(moment, work);
    kill(process, signal);
    int status = 0;
    waitpid(process, &status, 0);
    EXPECT_FALSE(WIFEXITED(status) && WEXITSTATUS(status) != 0) << WEXITSTATUS(status);
    return {WIFEXITED(status), WIFSIGNALED(status) ? WTERMSIG(status) : 0, ReadBytes(messages)};
}

TEST(Trouble, InterruptedRunsLeaveWholeFilesAndNothingElse)
{
    const std::vector<std::vector<std::string>> commands = {
        {"vr", kSmall, "--size", "300", "--turntable", "200", "-o", "new/"},
        {"vr", kSmall, "--size", "300", "--turntable", "200", "--video", "film.mp4"},
        {"mpr", "phantom:", "--plane", "axial", "--count", "all", "--step", "0.1", "-o", "new"},
    };
    int interrupted = 0, told = 0, amidPictures = 0;
    for (const std::vector<std::string>& command : commands)
        for (Moment moment : {20, 150, command.back() == "film.mp4" ? 400 : -1})
            for (int signal : {SIGINT, SIGTERM, SIGHUP})
            {
                const ScratchFolder folder, temporary;
                const Interrupted run = Interrupt(folder, temporary, command, signal, moment);
                const std::vector<std::string> files = FilesIn(folder.Path());
                ExpectWholeFiles(folder.Path());
                EXPECT_TRUE(FilesIn(temporary.Path()).empty());
                if (run.ended)
                    continue;
                ++interrupted;
                EXPECT_EQ(run.signal, signal);
                if (run.err.empty()) // it had not begun yet
                {
                    EXPECT_TRUE(files.empty());
                }
                else
                {
                    EXPECT_EQ(run.err, "corvane: interrupted; files that were complete by now stay\n");
                    ++told;
                }
                EXPECT_EQ(std::count(files.begin(), files.end(), "film.mp4"), 0);
                if (std::count(files.begin(), files.end(), "new") > 0)
                {
                    EXPECT_FALSE(FilesIn(folder / "new").empty()); // no folder without a picture
                    ++amidPictures;
                }
            }
    EXPECT_GE(interrupted, 9);
    EXPECT_GE(told, 6);
    EXPECT_GE(amidPictures, 6);
}

TEST(Trouble, AKilledRunLeavesNoHalfFileUnderItsName)
{
    for (Moment moment : {50, 150, 250, 350})
    {
        const ScratchFolder folder, temporary;
        WriteBytes(folder / "vr_001.png", "old");
        Interrupt(folder, temporary, {"vr", kSmall, "--size", "300", "--turntable", "200", "-o", ".", "--force"},
                  SIGKILL, moment);
        for (const std::string& file : FilesIn(folder.Path()))
            if (!file.ends_with(".part"))
            {
                const std::string bytes = ReadBytes(folder / file);
                EXPECT_TRUE(bytes == "old" || bytes.substr(bytes.size() - 8, 4) == "IEND") << file;
            }
        EXPECT_TRUE(FilesIn(temporary.Path()).empty());
    }
}

TEST(Trouble, AnIgnoredHangUpStaysIgnored)
{
    const ScratchFolder folder;
    const Outcome outcome =
        Shell(folder, "trap '' HUP; $C vr $S --size 200 --turntable 8 -o new & sleep 0.1; kill -HUP $!; wait $!");
    EXPECT_EQ(outcome.code, 0) << outcome.err;
    EXPECT_EQ(FilesIn(folder / "new").size(), 8u);
}
} // namespace
} // namespace corvane
