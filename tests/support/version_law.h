#pragma once

#include <optional>
#include <string>
#include <vector>

#include "qellib10/platform/error.h"
#include "qellib10/platform/shell/version_info.h"
#include "qellib10/platform/storage/mem_file.h"

/// What a file of these bytes says under that key.
inline std::optional<CString> TextIn(const std::string& bytes, const char* key) {
    const std::vector<BYTE> exact(bytes.begin(), bytes.end());  // so that a sanitizer sees each byte beyond
    CMemFile file;
    file.Attach(exact.data(), static_cast<UINT>(exact.size()));
    try {
        return qel::VersionText(file, key);
    } catch (const qel::DataError&) {
        return std::nullopt;
    }
}

/// Whether what the file says depends neither on the case of the key nor on bytes after its end.
inline bool SaysTheSameWithMoreAfter(const std::string& bytes) {
    const std::optional<CString> text = TextIn(bytes, "FileVersion");
    return TextIn(bytes, "fileVERSION") == text &&
           (!text || TextIn(bytes + std::string(1000, 'A'), "FileVersion") == text);
}
