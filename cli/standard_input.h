// standard_input.h -- a model that comes on standard input
#pragma once
#include <string>

enum class ModelFormat { UNKNOWN, MPS, LP };

// Which format a text is in, by its first line that says so.
ModelFormat model_format(const std::string &text);

// A copy of standard input in a file of its own, whose name ends as its format demands. The file is removed at the end
// of the scope, and by every signal that ends the program and can be caught.
class StandardInput
{
  public:
    // format: UNKNOWN finds out. On failure name() is empty and error() says why.
    explicit StandardInput(ModelFormat format);
    ~StandardInput();
    StandardInput(const StandardInput &) = delete;
    StandardInput &operator=(const StandardInput &) = delete;
    const std::string &name() const { return file; }
    const std::string &error() const { return reason; }

  private:
    std::string file;   // or empty
    std::string reason; // or empty
};
