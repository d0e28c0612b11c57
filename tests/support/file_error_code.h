#pragma once

#include "qellib10/platform/storage/file_exception.h"

/// The platform's number for why @p body could not do its work, 0 when it could.
template <class Body> LONG CodeOf(Body&& body) {
    try {
        body();
        return 0;
    } catch (const CFileException& error) {
        return error.m_lOsError;
    }
}
