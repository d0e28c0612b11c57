#pragma once

#include <map>
#include <string>

#include "demo/result/made_files.h"
#include "demo/support/temporary_file.h"
#include "demo/verify/checks.h"

namespace titration {

/// Compares files with what the program makes again from the same curve and method.
///
/// Fonts, the printer or the program may have changed since a file was laid out. The layout fingerprint shows that:
/// where it is the same, the file must come out again with the same bytes. Where it differs, only the checksums can be
/// compared; such files are counted. Plain text depends on none of this.
class MadeAgain {
public:
    explicit MadeAgain(const MadeFiles& made) : m_made(made) {}

    /// @param beside a file of the same run of the program, which must have the same layout fingerprint
    /// @param make writes the file to a path again; what it throws is also a finding
    /// @return what was found
    /// @throws Failure
    template <class Make>
    std::string Check(const std::string& name, const std::string& beside, const std::string& printer, Make make) {
        m_made.RequireAsMade(name);
        if (LayoutDiffersHere(name, beside, printer)) return "as it was made; reports are laid out differently here";
        return Compare(name, make);
    }
    /// The same for plain text.
    template <class Make> std::string CheckText(const std::string& name, Make make) const {
        m_made.RequireAsMade(name);
        return Compare(name, make);
    }

    /// How many files were not made again: only their checksums were compared.
    int CountBySumsAlone() const { return m_countBySumsAlone; }

private:
    bool LayoutDiffersHere(const std::string& name, const std::string& beside, const std::string& printer);
    const std::string& FingerprintHere(const std::string& printer);

    template <class Make> std::string Compare(const std::string& name, Make make) const {
        const TemporaryFile again;
        make(again.Path());
        Require(CQFile::CompareFile(again.Path().c_str(), m_made.Path(name).c_str()) != 0,
                "differs from what is made again");
        return "the same when it is made again";
    }

    const MadeFiles& m_made;
    int m_countBySumsAlone = 0;
    std::map<std::string, std::string> m_fingerprints;  // of each printer
};

}  // namespace titration
