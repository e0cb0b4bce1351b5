// scratch.h -- Scratch, an empty directory to work in for the length of a test, and file helpers
#pragma once
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <string>

// Makes a fresh directory the current one; goes back and removes it in the end.
struct Scratch {
    std::filesystem::path home = std::filesystem::current_path();
    std::filesystem::path path;

    Scratch()
    {
        std::string name = testing::TempDir() + "tarvexXXXXXX";
        if (!mkdtemp(name.data())) abort();
        path = name;
        std::filesystem::current_path(path);
    }
    ~Scratch()
    {
        std::filesystem::current_path(home);
        std::filesystem::remove_all(path);
    }
    Scratch(const Scratch &) = delete;
    Scratch &operator=(const Scratch &) = delete;
};

inline void file_put(const std::string &name, const std::string &text)
{
    std::ofstream(name, std::ios::binary) << text;
}
inline std::string file_get(const std::string &name)
{
    std::ifstream stream(name, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
}

// Catches what is printed to standard output, from construction to text() or its own end.
struct Output {
    bool open = true;
    Output() { testing::internal::CaptureStdout(); }
    ~Output()
    {
        if (open) text();
    }
    Output(const Output &) = delete;
    Output &operator=(const Output &) = delete;
    std::string text()
    {
        open = false;
        return testing::internal::GetCapturedStdout();
    }
};
