#pragma once

#include "environment_scope.h"
#include "temp_folder.h"

/// Empty registry trees of their own for the length of a scope.
class RegistryScope {
public:
    const TempFolder& Folder() const { return m_folder; }

private:
    TempFolder m_folder;
    EnvironmentScope m_place{"QELLIB10_REGISTRY_DIR", m_folder.Posix().c_str()};
};
