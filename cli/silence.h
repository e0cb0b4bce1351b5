// silence.h -- OutputFlag=0: nothing is printed but what was asked for by an option, not even errors
#pragma once
#include <cstdio>
#include <string>
#include <vector>

// Is the last OutputFlag=Value among the words 0? Answered before anything can have gone wrong.
bool silence_wanted(const std::vector<std::string> &words);

void silence(FILE *stream); // for good

// Takes the places of standard streams that the caller has closed, so that no file gets their numbers: reading standard
// input or writing standard output fails then, and what goes to standard error goes nowhere.
void hold_streams();

// From here on standard output goes to standard error; returned is a stream to where it went before, or null when that
// was closed.
FILE *divert_output();

// Silent from construction to the end of its scope, if asked.
class SilentScope
{
  public:
    SilentScope(FILE *stream, bool wanted);
    ~SilentScope();
    SilentScope(const SilentScope &) = delete;
    SilentScope &operator=(const SilentScope &) = delete;

  private:
    FILE *stream;
    int kept = -1; // where the stream went before, or -1
};
