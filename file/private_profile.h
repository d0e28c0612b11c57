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
/// Operations return 1, or 0 when they failed; reading returns the default then. qel::LastFailure says why. Nothing is
/// thrown but std::bad_alloc, by Get of a text alone. What the storage does with names, texts and concurrent use:
/// qel::ReadProfileString, and registry.h.
class QELLIB10_API CPrivateProfile {
public:
    enum Mode : int { iniMode = 0, registryMode = 1 };

    explicit CPrivateProfile(const char* location = nullptr, int mode = iniMode);
    virtual ~CPrivateProfile();
    CPrivateProfile(const CPrivateProfile&) = default;
    CPrivateProfile& operator=(const CPrivateProfile&) = default;

    /// @param location the INI file, or a root's name (HKEY_LOCAL_MACHINE, HKEY_CURRENT_USER or HKEY_CLASSES_ROOT, in
    /// any case), a backslash and a path; without one of these roots all operations fail
    /// @param mode registryMode; any other value means an INI file
    /// @return 0 without a file name, or without a root: all operations will fail
    int Open(const char* location, int mode);
    /// Forgets the location; the mode stays. Always 1.
    int Close();

    /// A null @p value deletes the entry of an INI file; in the registry it is a failure.
    int Set(const char* section, const char* key, const char* value);
    int Set(const char* section, const char* key, int value);
    int Set(const char* section, int key, const char* value);
    int Set(const char* section, int key, int value);
    /// Does not compile, because as an int the number would lose its decimals: see SetDouble.
    template <typename Key, typename Value>
    requires(qel::Fractional<Key> || qel::Fractional<Value>) int Set(const char* section, Key key,
                                                                     Value value) = delete;
    /// The shortest text that reads back as the same number, also in the registry: "1.006".
    /// @return 0, and nothing changes, for infinities and NaN, and in an INI file for a null @p key
    int SetDouble(const char* section, const char* key, double value);
    int SetDouble(const char* section, int key, double value);
    template <qel::Fractional Key> int SetDouble(const char* section, Key key, double value) = delete;
    /// Bytes, at most 1 MiB; registry only.
    int Set(const char* section, const char* key, const void* data, DWORD size);

    /// A text of at most 1023 bytes. Returns the default for an empty value of an INI file, and in the registry for a
    /// longer text and for a value that is not text.
    CString Get(const char* section, const char* key, const char* defaultValue) const;
    /// The number at the start of an INI file's text, 0 if there is none; in the registry only REG_DWORD.
    int Get(const char* section, const char* key, int defaultValue) const;
    CString Get(const char* section, int key, const char* defaultValue) const;
    int Get(const char* section, int key, int defaultValue) const;
    template <typename Key, typename Default>
    requires(qel::Fractional<Key> || qel::Fractional<Default>) int Get(const char* section, Key key,
                                                                       Default defaultValue) const = delete;
    /// The number that is the whole of the text, read like qel::ReadNumber (people also type 1,006), or REG_DWORD.
    /// Unlike for an int, text that is not a number gives the default; so does a null @p key in an INI file.
    double GetDouble(const char* section, const char* key, double defaultValue) const;
    double GetDouble(const char* section, int key, double defaultValue) const;
    template <qel::Fractional Key> double GetDouble(const char* section, Key key, double defaultValue) const = delete;
    /// The bytes of a value of any type; registry only.
    /// @param data null: only the size is wanted
    /// @param size in: size of @p data; out: the value's size, also if @p data is too small, which is a failure
    int Get(const char* section, const char* key, void* data, DWORD* size) const;

    /// Deletes a section and everything in it; registry only.
    int Delete(const char* section);

    /// All lines of a section except comments, entries as key, equals sign and value; INI only. A missing section has
    /// none.
    /// @return 0 if they need more than 32764 bytes, counting a zero for each, or if the file exists but cannot be
    /// read; @p out does not change then
    int GetAllStrings(const char* section, CStringArray& out) const;

    /// Copies everything in the profile's key to the key next to it whose name has @p suffix appended, replacing what
    /// was there. Restore copies it back, replacing what is here, and the copy stays. Each is done as a whole or, on
    /// any failure, not at all. It fails if there is nothing to copy, with an empty suffix, which would name the
    /// profile's own key, and with one that starts with a backslash. Registry only.
    int Backup(const char* suffix);
    int Restore(const char* suffix);

protected:
    /// Deletes a key and everything in it. @return 0, -1 if it cannot be opened, else the registry's error number
    int DeleteKeySub(HKEY parent, const char* name);
    /// Copies all subkeys and values of one key into another one of the same root.
    int BackupSub(HKEY from, HKEY to);

private:
    // The meaning of a null key in an INI file.
    bool IsWholeSection(const char* key) const { return key == nullptr && m_nMode != registryMode; }
    CString KeyOf(const char* section) const;
    CString OpenedKeyOf(const char* section) const;
    CString BackupKey(const char* suffix) const;
    int Write(const char* section, const char* key, const char* value);
    int Write(const char* section, const char* key, DWORD type, std::string_view data);
    bool Read(const char* section, const char* key, qel::RegistryValue& value) const;
    int Replace(const CString& source, const CString& target);

    CString m_szLocation;  // in registry mode the path below the root, always ending with a backslash
    int m_nMode = iniMode;
    HKEY m_hRoot = nullptr;
};
