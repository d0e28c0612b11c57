#pragma once

#include <string>

#include "demo/method/method.h"

namespace titration {

/// The method for results, in an enciphered XML document:
///
///     <method>
///       <curve><volume>volume_mL</volume> ...</curve>
///       <variables><item><name>C_NaOH</name><value>0.1</value></item> ...</variables>
///       <uncertainties><item><name>C_NaOH</name><value>standard 0.0001</value></item> ...</uncertainties>
///       ...
///     </method>
///
/// A section without items is not there, as in documents of earlier releases.
///
/// It is locked from construction on, and does not change unless Keep is called.
class MethodFile {
public:
    /// A missing file is created, without a method.
    /// @throws Failure if the system refuses, and if the file contains something else
    explicit MethodFile(const std::string& path);
    /// The method in a file, which is neither created nor locked.
    /// @throws Failure
    static Method Read(const std::string& path);

    /// Without items if there is none yet.
    const Method& Kept() const { return m_kept; }
    /// Replaces the method by @p method, and ends the lock. Only once.
    /// @throws Failure
    void Keep(const Method& method);

private:
    std::string m_name;
    CCryptXMLDocument m_document;
    Method m_kept;
};

}  // namespace titration
