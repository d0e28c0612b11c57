#pragma once

#include <map>
#include <string>

#include "demo/result/made_files.h"
#include "demo/support/temporary_file.h"
#include "demo/verify/checks.h"

namespace titration {

/// Compares files with what the program makes of their origin now.
///
/// Fonts, a printer, or the program may be others than when it laid a file out. A sample report tells: where it is what
/// it was then, the same bytes have to come out again, whatever sums were written down. Where it differs, the sums are
/// all that is left to hold the file against; such files are counted. Plain text hangs on none of that.
class MadeAgain {
public:
    explicit MadeAgain(const MadeFiles& made) : m_made(made) {}

    /// @param beside a file of the same run of the program, which has to have the same sample
    /// @param make writes the file to a path again; what it throws is a finding, too
    /// @return what was found
    /// @throws Failure
    template <class Make>
    std::string Check(const std::string& name, const std::string& beside, const std::string& printer, Make make) {
        m_made.RequireAsMade(name);
        if (IsOtherwiseHere(name, beside, printer)) return "as it was made; reports come out otherwise here";
        return Compare(name, make);
    }
    /// The same for plain text.
    template <class Make> std::string CheckText(const std::string& name, Make make) const {
        m_made.RequireAsMade(name);
        return Compare(name, make);
    }

    /// How many files were not made again.
    int HeldAgainstSums() const { return m_heldAgainstSums; }

private:
    bool IsOtherwiseHere(const std::string& name, const std::string& beside, const std::string& printer);
    const std::string& SampleHere(const std::string& printer);

    template <class Make> std::string Compare(const std::string& name, Make make) const {
        const TemporaryFile again;
        make(again.Path());
        Require(CQFile::CompareFile(again.Path().c_str(), m_made.Path(name).c_str()) != 0,
                "differs from what is made again");
        return "the same when it is made again";
    }

    const MadeFiles& m_made;
    int m_heldAgainstSums = 0;
    std::map<std::string, std::string> m_samples;  // of each printer
};

}  // namespace titration
