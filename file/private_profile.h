#pragma once

#include <string_view>

#include "qellib10/platform/export.h"
#include "qellib10/platform/fractional.h"
#include "qellib10/platform/registry/registry.h"
#include "qellib10/platform/text/string.h"
#include "qellib10/platform/text/string_array.h"
#include "qellib10/platform/types.h"

/// Settings by section and key, in an INI file or below a key of the registry, by the same calls. The application
/// chooses the place once. The class prevents half-written settings: a program that is killed while it writes leaves
/// the old settings or the new ones (in a folder where it may make files), and two programs that write at once both
/// succeed.
///
/// @code
/// CPrivateProfile settings("HKEY_CURRENT_USER\\Software\\Meter", CPrivateProfile::registryMode);
/// settings.Set("Window", "Width", 640);
/// const int width = settings.Get("Window", "Width", 800);  // 800 if there is none
/// CPrivateProfile method("C:\\data\\meter.ini");
/// if (!method.SetDouble("Titration", "Factor", 1.006)) return;  // Set would make an int of it, so it does not compile
/// @endcode
///
/// In the registry a section is a key below the profile's own; null, or the empty section, is the profile's key itself.
/// A null @p key is the section's default value there. In an INI file it means the whole section: setting deletes it,
/// reading gives its first name.
///
/// Operations return 1, or 0 when they failed; reading returns the default then. Nothing is thrown but std::bad_alloc,
/// by Get of a text alone. What the storage does with names, texts and concurrent use: qel::ReadProfileString, and
/// registry.h.
class QELLIB10_API CPrivateProfile {
public:
    enum Mode : int { iniMode = 0, registryMode = 1 };

    explicit CPrivateProfile(const char* location = nullptr, int mode = iniMode);
    virtual ~CPrivateProfile();
    CPrivateProfile(const CPrivateProfile&) = default;
    CPrivateProfile& operator=(const CPrivateProfile&) = default;

    /// @param location the INI file, or a root's name (HKEY_LOCAL_MACHINE, HKEY_CURRENT_USER or HKEY_CLASSES_ROOT, case
    /// does not matter), a backslash and a path; without one of these roots all operations fail
    /// @param mode registryMode; anything else is an INI file
    /// @return 0 without a file's name, or without a root: all operations will fail
    int Open(const char* location, int mode);
    /// Forgets the location; the mode stays. Always 1.
    int Close();

    /// A null @p value deletes the entry of an INI file; in the registry it is a failure.
    int Set(const char* section, const char* key, const char* value);
    int Set(const char* section, const char* key, int value);
    int Set(const char* section, int key, const char* value);
    int Set(const char* section, int key, int value);
    /// Does not compile, since as an int the number would lose its decimals: see SetDouble.
    template <typename Key, typename Value>
    requires(qel::Fractional<Key> || qel::Fractional<Value>) int Set(const char* section, Key key,
                                                                     Value value) = delete;
    /// The shortest text that reads back as the same number, also in the registry: "1.006".
    /// @return 0 and no change for infinities and NaN, and in an INI file for a null @p key
    int SetDouble(const char* section, const char* key, double value);
    int SetDouble(const char* section, int key, double value);
    template <qel::Fractional Key> int SetDouble(const char* section, Key key, double value) = delete;
    /// Bytes, at most 1 MiB; registry only.
    int Set(const char* section, const char* key, const void* data, DWORD size);

    /// A text of at most 1023 bytes. An empty value of an INI file gives the default; so does in the registry a longer
    /// text, and a value that is no text.
    CString Get(const char* section, const char* key, const char* defaultValue) const;
    /// The number that an INI file's text begins with, 0 when there is none; in the registry REG_DWORD only.
    int Get(const char* section, const char* key, int defaultValue) const;
    CString Get(const char* section, int key, const char* defaultValue) const;
    int Get(const char* section, int key, int defaultValue) const;
    template <typename Key, typename Default>
    requires(qel::Fractional<Key> || qel::Fractional<Default>) int Get(const char* section, Key key,
                                                                       Default defaultValue) const = delete;
    /// The number that is the whole of the text, as qel::ReadNumber reads it (people type 1,006 too), or REG_DWORD.
    /// Other than of an int, a text that is no number gives the default; so does in an INI file a null @p key.
    double GetDouble(const char* section, const char* key, double defaultValue) const;
    double GetDouble(const char* section, int key, double defaultValue) const;
    template <qel::Fractional Key> double GetDouble(const char* section, Key key, double defaultValue) const = delete;
    /// The bytes of a value of any type; registry only.
    /// @param data null: only the size is wanted
    /// @param size in: room in @p data; out: the value's size, also when the room is too small, which is a failure
    int Get(const char* section, const char* key, void* data, DWORD* size) const;

    /// Deletes a section with all below it; registry only.
    int Delete(const char* section);

    /// All lines of a section but comments, entries as key, equals sign and value; INI only. A missing section has
    /// none.
    /// @return 0 when they take more than 32764 bytes, a zero counted for each, or when there is a file that cannot be
    /// read; @p out stays then
    int GetAllStrings(const char* section, CStringArray& out) const;

    /// Copies all below the profile's key to the key beside it that has @p suffix behind its name, in place of what was
    /// there; Restore copies it back in place of what is here, and the copy stays. Each is done as a whole or, on any
    /// failure, not at all; so when there is nothing to copy, and with an empty suffix, which would name the profile's
    /// own key, or one that begins with a backslash. Registry only.
    int Backup(const char* suffix);
    int Restore(const char* suffix);

protected:
    /// Deletes a key with all below it. @return 0, -1 when it cannot be opened, else the registry's error number
    int DeleteKeySub(HKEY parent, const char* name);
    /// Copies all subkeys and values of one key into another one of the same root.
    int BackupSub(HKEY from, HKEY to);

private:
    // What a null key means in an INI file.
    bool IsWholeSection(const char* key) const { return key == nullptr && m_nMode != registryMode; }
    CString KeyOf(const char* section) const;
    CString OpenedKeyOf(const char* section) const;
    CString BackupKey(const char* suffix) const;
    int Write(const char* section, const char* key, const char* value);
    int Write(const char* section, const char* key, DWORD type, std::string_view data);
    bool Read(const char* section, const char* key, qel::RegistryValue& value) const;
    int Replace(const CString& source, const CString& target);

    CString m_szLocation;  // in registry mode the path below the root, always with a backslash at its end
    int m_nMode = iniMode;
    HKEY m_hRoot = nullptr;
};
