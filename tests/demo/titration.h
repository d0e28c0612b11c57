#pragma once

#include <sys/wait.h>

#include <cmath>
#include <cstdlib>
#include <sstream>

#include <qellib10/qellib10.h>
#include <qellib10/store.h>

#include "../support/output_of.h"
#include "../support/test.h"

struct Outcome {
    int status;
    std::string out, err;
};

/// The example program titration in a folder of its own, which is its current one.
struct TitrationProgram {
    Outcome Run(const std::string& arguments) const {
        const std::string command = "cd " + Path("") + " && " QELLIB10_TITRATION " " + arguments + " >out 2>err";
        const int status = std::system(command.c_str());
        return {WEXITSTATUS(status), m_folder.Read("out"), m_folder.Read("err")};
    }
    Outcome Run(const std::string& data, const std::string& settings) const {
        m_folder.Write("data.csv", data);
        m_folder.Write("settings.ini", settings);
        return Run("--data data.csv --settings settings.ini --out results/first");
    }
    std::string Path(const char* name) const { return m_folder.Posix(name).string(); }

    const TempFolder m_folder;
};

class Titration : public testing::Test, public TitrationProgram {
public:
    using TitrationProgram::Run;
};

inline std::string Settings(const std::string& formula, const std::string& more = "") {
    return "[variables]\nF = 1\nZERO = 0\n[result]\nend_point = EP\nname = R\nunit = mL\ndigits = 3\nformula = " +
           formula + "\n" + more;
}

inline std::string Replaced(std::string text, const std::string& from, const std::string& to) {
    for (std::size_t at = 0; (at = text.find(from, at)) != std::string::npos; at += to.size()) {
        text.replace(at, from.size(), to);
    }
    return text;
}

inline constexpr const char* kVinegar =
    "--data " QELLIB10_SOURCE_DIR "/demo/data/vinegar.csv --settings " QELLIB10_SOURCE_DIR
    "/demo/data/vinegar.ini --out results";

/// A curve with its end point at 10.2, rising for a positive height, with uneven steps and noise that repeats itself.
inline std::string Curve(double height, double noise = 0, char separator = ',') {
    std::ostringstream table;
    unsigned random = 1;
    for (double volume = 0; volume < 20; volume += std::abs(volume - 10) < 1.5 ? 0.15 : 0.8) {
        random = random * 1664525u + 1013904223u;
        const double error = noise * ((random >> 16) / 32768.0 - 1);
        table << volume << separator << 150 + height * std::tanh((volume - 10.2) / 0.4) + 0.5 * volume + error << '\n';
    }
    return table.str();
}
