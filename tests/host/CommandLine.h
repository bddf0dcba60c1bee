// The program, run as a person runs it.

#pragma once

#include <gtest/gtest.h>

#include <cstdlib>
#include <sstream>
#include <string>
#include <vector>

#include "host/record/json_lines.h"
#include "testkit/TemporaryDirectory.h"
#include "tests/support/built.h"

namespace etmhost {

class CommandLine : public ::testing::Test {
protected:
    struct Outcome {
        int status;
        std::string output, errors;
    };
    /// `launcher` is what stands ahead of the program on its line.
    Outcome Run(const std::string& arguments, const std::string& launcher = "") const {
        Outcome outcome = RunOnce(arguments, launcher);
        // On a busy machine Wine's shell now and then fails to start the program, and says so.
        for (int tries = 1; tries < 4 && outcome.errors.starts_with("Can't recognize '"); ++tries)
            outcome = RunOnce(arguments, launcher);
        return outcome;
    }

    /// What the program printed, with line ends as everywhere.
    std::string Said(const std::string& file) const {
        std::string text = m_Printed.Read(file);
        if (onWindows) std::erase(text, '\r');
        return text;
    }

    /// The events of a journal for programs.
    std::vector<record::Event> ReadRecord(const char* file) const {
        std::vector<record::Event> events;
        std::istringstream lines(directory.Read(file));
        for (std::string line; std::getline(lines, line);)
            events.push_back(record::FromJsonLine(line));
        return events;
    }

    const TemporaryDirectory directory;
    const std::string state = " --state \"" + directory.PathOf("s.json") + "\" ";
    const bool onWindows = std::string(built::kEtmhost).ends_with(".exe");

private:
    Outcome RunOnce(const std::string& arguments, const std::string& launcher) const {
        // Files of its own: a Windows lets go of those of the run before a little later.
        const std::string number = std::to_string(++m_Runs);
        const std::string output = "output" + number, errors = "errors" + number;
        const std::string files =
            " >\"" + m_Printed.PathOf(output) + "\" 2>\"" + m_Printed.PathOf(errors) + "\"";
        std::string command = launcher + "\"" + built::kEtmhost + "\" " + arguments + files;
        if (onWindows) command = "\"" + command + "\""; // the shell takes the outer pair off
        const int result = std::system(command.c_str());
        // POSIX has the exit status in the second byte, Windows has it as it is.
        return {result > 255 ? result >> 8 : result, Said(output), Said(errors)};
    }

    const TemporaryDirectory m_Printed;
    mutable int m_Runs = 0;
};

} // namespace etmhost
