#pragma once

#include <string>

#include "demo/method/method.h"

namespace titration {

/// The method that results are made by, in an enciphered XML document:
///
///     <method>
///       <curve><volume>volume_mL</volume> ...</curve>
///       <variables><item><name>C_NaOH</name><value>0.1</value></item> ...</variables>
///       ...
///     </method>
///
/// It is locked from construction on, and stays as it was unless Keep is called.
class MethodFile {
public:
    /// A missing file is made, without a method.
    /// @throws Failure when the system refuses, and when the file holds something else
    explicit MethodFile(const std::string& path);
    /// The method in a file, which is neither made nor locked.
    /// @throws Failure
    static Method Read(const std::string& path);

    /// Without items when there is none yet.
    const Method& Kept() const { return m_kept; }
    /// Takes @p method in place of the one that is kept, and ends the lock. Once only.
    /// @throws Failure
    void Keep(const Method& method);

private:
    std::string m_name;
    CCryptXMLDocument m_document;
    Method m_kept;
};

}  // namespace titration
