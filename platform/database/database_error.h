#pragma once

#include <stdexcept>
#include <string>

#include "qellib10/platform/export.h"

namespace qel {

/// What a database refused, as far as its users distinguish it.
enum class DatabaseFault {
    kForeignKey,  // refers to a row that does not exist
    kValue,       // breaks another constraint, or is too large
    kAccess,      // the file may not be opened, or not be written
    kBusy,        // others use it
    kDiskFull,
    kIo,
    kDamaged,  // or not a database
};

/// A step on a database failed. Its text is SQLite's.
class QELLIB10_INTERNAL_API DatabaseError : public std::runtime_error {
public:
    DatabaseError(DatabaseFault fault, const std::string& text) : std::runtime_error(text), m_fault(fault) {}
    ~DatabaseError() override;
    DatabaseFault Fault() const noexcept { return m_fault; }

private:
    DatabaseFault m_fault;
};

}  // namespace qel
