// silence.h -- OutputFlag=0: nothing is printed but what was asked for by an option, not even errors
#pragma once
#include <cstdio>

// Is the last OutputFlag=Value among the words 0? Answered before anything can have gone wrong.
bool silence_wanted(int argc, char **argv);

void silence(FILE *stream); // for good

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
