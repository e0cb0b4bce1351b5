// file_use.h -- which files one call reads and writes
#pragma once
#include <string>
#include <vector>

enum class Output { LOG, RESULT }; // a log is appended to, so several logs may share a file

// Remembers what is read and written, so that no output takes the place of an input or of another output.
class FileUse
{
  public:
    // A file that is read, as the command line has it: what the library completes its name to counts as well.
    // what: "the model", for the message.
    void reads(const std::string &what, const std::string &name);
    // Standard input, if it is a file.
    void reads_standard_input();
    // A file to write; an empty name is none. Why it cannot be, or empty. what: "--json".
    std::string writes(const std::string &what, const std::string &name, Output kind);

  private:
    // A regular file, or one that is not there yet. Devices and queues have nothing to lose and are not kept.
    struct Place {
        std::string what, name; // for the message
        std::string path; // absolute, links resolved; empty when only the numbers are known
        unsigned long device =
            0; // with `number` what identifies a file that is there, whatever its names
        unsigned long number = 0; // 0: it is not there
        bool is_log = false;      // an output that is appended to
    };
    static bool find(const std::string &name, Place *place);
    static bool is_same(const Place &a, const Place &b);

    std::vector<Place> inputs;
    std::vector<Place> outputs;
};

// Why a file written by --json, --solution or LogFile may not be called so, or empty: the endings of models, bases,
// starts and parameter files belong to files that somebody has made.
std::string ending_refused(const std::string &what, const std::string &name);

// Takes away what an earlier call left in an output file: a file is removed, one behind a link emptied; devices and
// queues stay as they are. Why that is not possible, or empty.
std::string clear_output(const std::string &name);
