// files_support.h -- what the tests of model files share
#pragma once
#include "env/env_fixture.h"
#include "model/model.h"
#include "support/lp_tarvex.h"
#include <string>
#include <vector>

// What a file carries of a model, as text: the stored form, entries column by column in order, zeros left out.
enum class Names { COMPARE, IGNORE };
std::string stored_text(const TVXmodel *model, Names names);
std::string shown(double value); // infinities as "inf"
// Writes the model under the name, reads it again, and shows both if they differ; "" if not.
std::string round_trip(TVXmodel *model, const std::string &name, Names names);

// An environment and an empty current directory.
struct Files : Env {
    TVXmodel *model = nullptr; // of the last read
    std::string log;           // of the last read
    void TearDown() override;

    // Reads a file, or a text under that name, in place of `model`; the code.
    int read_file(const std::string &name);
    int read(const std::string &text, const std::string &name = "t.mps");
    // Reads a side file into `model`; the code.
    int read_into(const std::string &name);
    int read_into(const std::string &name, const std::string &text)
    {
        file_put(name, text);
        return read_into(name);
    }
    std::string model_message() { return TVXgetmerrormsg(model); }
    // Gives `model` a solution, as a search would leave it.
    void give_solution(const std::vector<double> &x);
    // Statuses that a solve would start from, columns first; basic is 0.
    std::vector<int> basis() const;
    double start(int j); // of column j, once changes are made; 0 if there is none

    // The model in place of `model`, with names for its first columns and rows.
    void take(const LpModel &lp, std::vector<std::string> vars,
              std::vector<std::string> rows);

    std::string round_trip(const std::string &name, Names names); // of `model`, in silence
    std::string warnings() const { return log.substr(0, log.find("Read ")); }
    std::string content() const; // of `model`: stored_text with its names, on one line
    int column(const std::string &name) const; // -1 when there is none
    int row(const std::string &name) const;
    // "C [0,inf]": type and bounds of a column, or "none".
    std::string domain(const std::string &column_name) const;
};

// A small model around the sections to be tested: rows COST, R1 (G) and R2 (L), columns X and Y.
std::string mps_with(const std::string &sections);
