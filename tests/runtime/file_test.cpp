// file_test.cpp -- plain and compressed files under every kind of name, and files that go wrong
//
// Damaged files, full disks and commands that are missing are tried through the interface, in api/file_calls_test.cpp.
#include "runtime/file.h"
#include "support/scratch.h"
#include <csignal>
#include <cstdlib>
#include <string>
#include <sys/resource.h>
#include <unistd.h>

// More than any buffer between two processes holds.
static std::string long_text()
{
    std::string text;
    for (int k = 0; k < 60'000; k++) text += std::to_string(k * 7919L % 100'003) + "\n";
    return text;
}

static int write_text(const std::string &name, const std::string &text)
{
    FileHandle file;
    if (FileOpen(name.c_str(), 'w', &file)) return -1;
    fwrite(text.data(), 1, text.size(), file.stream);
    const int error = FileClose(&file);
    EXPECT_EQ(file.stream, nullptr);
    return error;
}

static int read_text(const std::string &name, std::string *text)
{
    FileHandle file;
    text->clear();
    if (FileOpen(name.c_str(), 'r', &file)) return -1;
    char block[1000];
    for (size_t n = 0; (n = fread(block, 1, sizeof block, file.stream)) > 0;)
        text->append(block, n);
    return FileClose(&file);
}

TEST(File, OddNamesRoundTripPlainAndCompressed)
{
    if (system("command -v gzip bzip2 >/dev/null"))
        GTEST_SKIP() << "gzip or bzip2 is missing";
    const std::string texts[] = {long_text(), ""};
    int files = 0;
    const Scratch scratch;
    std::string back;
    for (const std::string name :
         {"plain", "with space", "-dc", "--help", "a;touch b", "$(touch b)",
          "it's \"quoted\"", "`touch b`", "new\nline", "a|b>c", "*", "\xff\xfe"})
        for (const char *ending : {"", ".gz", ".bz2"}) {
            const std::string file = name + ending, &text = texts[files++ % 7 == 0];
            ASSERT_EQ(write_text(file, text), 0) << file;
            ASSERT_TRUE(FileCanRead(file.c_str()));
            ASSERT_EQ(read_text(file, &back), 0) << file;
            ASSERT_EQ(back, text) << file;
            EXPECT_TRUE(text.empty() ||
                        (file_get(file).size() < text.size()) == (*ending != 0));
        }
    for (const auto &entry : std::filesystem::directory_iterator("."))
        files -= entry.exists();
    EXPECT_EQ(files, 0); // no name was taken apart
}

TEST(File, WhatCannotBeOpenedIsAnError)
{
    const Scratch scratch;
    FileHandle file;
    std::filesystem::create_directory("dir");
    std::filesystem::create_directory("dir.gz");
    for (const char *name :
         {"none", "none.gz", "none.bz2", "dir", "dir.gz", "", "no/such/file.gz"}) {
        EXPECT_EQ(FileOpen(name, 'r', &file), 1) << name;
        EXPECT_EQ(file.stream, nullptr);
        EXPECT_FALSE(FileCanRead(name)) << name;
        if (*name != 'n' || name[2] == '/') {
            EXPECT_EQ(FileOpen(name, 'w', &file), 1) << name;
        }
    }
    EXPECT_EQ(FileOpen(nullptr, 'r', &file), 1);
    EXPECT_FALSE(FileCanRead(nullptr));
    EXPECT_EQ(FileClose(&file), 0); // nothing open
}

TEST(File, ACommandThatGivesUpIsAnErrorAndNotASignal)
{
    const Scratch scratch;
    ASSERT_EQ(write_text("good.gz", "x"), 0);
    const std::string path = getenv("PATH");
    setenv("PATH", scratch.path.c_str(), 1);
    std::string back, much; // whatever does not fit its buffer must come back as an error
    while (much.size() < 4'000'000) much += long_text();
    file_put("gzip", "#!/bin/sh\nexit 1\n");
    std::filesystem::permissions("gzip", std::filesystem::perms::owner_all);
    EXPECT_EQ(write_text("out.gz", much), 1);
    EXPECT_EQ(read_text("good.gz", &back), 1);
    setenv("PATH", path.c_str(), 1);
}

TEST(File, AReaderMayStopEarlyWhateverTheCallersSignalSettings)
{
    const Scratch scratch;
    for (const auto setting : {SIG_DFL, SIG_IGN})
        for (const char *name : {"early", "early.gz", "early.bz2"}) {
            ASSERT_EQ(write_text(name, long_text()), 0);
            const auto previous = signal(SIGPIPE, setting);
            FileHandle file;
            ASSERT_EQ(FileOpen(name, 'r', &file), 0);
            EXPECT_EQ(fgetc(file.stream), '0');
            EXPECT_EQ(FileClose(&file), 0); // must stop the command by our closing
            signal(SIGPIPE, previous);
        }
}

TEST(File, NoDescriptorIsLeftOpen)
{
    const Scratch scratch;
    const auto open_descriptors = [] {
        const auto all = std::filesystem::directory_iterator("/proc/self/fd");
        return std::distance(begin(all), end(all));
    };
    const auto before = open_descriptors();
    std::string back;
    for (const char *name : {"a", "a.gz", "a.bz2"}) {
        ASSERT_EQ(write_text(name, "x"), 0);
        ASSERT_EQ(read_text(name, &back), 0);
    }
    EXPECT_EQ(read_text("none.gz", &back), -1);
    EXPECT_EQ(write_text("no/such/file.gz", ""), -1);
    rlimit limit{};
    getrlimit(RLIMIT_NOFILE, &limit);
    rlimit tight = limit; // descriptors run out at every step of opening a pipe
    for (int spare = 0; spare < 4; spare++) {
        tight.rlim_cur = rlim_t(before - 1 + spare); // one was for counting
        setrlimit(RLIMIT_NOFILE, &tight);
        read_text("a.gz", &back);
        write_text("b.gz", "x");
        setrlimit(RLIMIT_NOFILE, &limit);
    }
    EXPECT_EQ(open_descriptors(), before);
}

TEST(File, FilesNeverTakeThePlaceOfStandardStreams)
{
    const Scratch scratch;
    const int saved = dup(STDIN_FILENO);
    close(STDIN_FILENO);
    for (const char *name : {"s", "s.gz"}) {
        FileHandle file;
        ASSERT_EQ(FileOpen(name, 'w', &file), 0);
        EXPECT_TRUE(file.kind == 'p' || fileno(file.stream) > STDERR_FILENO);
        fputs("text", file.stream);
        EXPECT_EQ(FileClose(&file), 0);
        std::string back;
        EXPECT_EQ(read_text(name, &back), 0);
        EXPECT_EQ(back, "text");
    }
    dup2(saved, STDIN_FILENO);
    close(saved);
}
