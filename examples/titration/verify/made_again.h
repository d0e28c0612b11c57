#pragma once

#include <map>
#include <string>

#include "../made_files.h"
#include "../temporary_file.h"
#include "checks.h"

namespace titration {

/// Compares files that the program lays out with what it makes of their origin now.
///
/// Fonts, a printer, or the program may be others than when a file was made. A sample report tells: where it is what it
/// was then, the same bytes have to come out again, whatever sums were written down. Where it differs, the sums are all
/// that is left to hold the file against.
class MadeAgain {
public:
    explicit MadeAgain(const MadeFiles& made) : m_made(made) {}

    /// @param make writes the file to a path again; what it throws is a finding, too
    /// @return what was found
    /// @throws Failure
    template <class Make> std::string Check(const std::string& name, const std::string& printer, Make make) {
        m_made.RequireAsMade(name);
        if (m_made.SampleOf(name) != SampleHere(printer)) return "as it was made; reports come out otherwise here";
        const TemporaryFile again;
        make(again.Path());
        Require(CQFile::CompareFile(again.Path().c_str(), m_made.Path(name).c_str()) != 0,
                "differs from what is made again");
        return "the same when it is made again";
    }

private:
    const std::string& SampleHere(const std::string& printer);

    const MadeFiles& m_made;
    std::map<std::string, std::string> m_samples;  // of each printer
};

}  // namespace titration
