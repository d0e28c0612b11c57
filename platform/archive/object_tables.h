#pragma once

#include <unordered_map>
#include <vector>

#include "qellib10/platform/archive/archive.h"

/// The numbers that an archive has assigned, from 1; classes and objects share them.
struct CArchive::ObjectTables {
    struct Entry {
        const CRuntimeClass* theClass = nullptr;
        bool isObject = false;
        CObject* object = nullptr;  // null for a class, and for an object that could not be read
    };

    std::unordered_map<const void*, DWORD> stored;  // objects and classes by address
    std::vector<Entry> loaded{Entry{}};             // by number; 0 is the null pointer
    int nesting = 0;
};
