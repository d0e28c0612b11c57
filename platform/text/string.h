#pragma once

#include <compare>
#include <cstdarg>
#include <cstddef>
#include <string>
#include <string_view>

#include "qellib10/platform/export.h"
#include "qellib10/platform/types.h"

/// Text of bytes in the code page of the process, under the name that the framework has for it. It prevents a mistake
/// that is easy with std::string: in a double-byte code page the second byte of a character may look like a letter, a
/// backslash or a bracket. Searches, comparisons and trims step by characters, so they never find such a half.
///
/// @code
/// CString path("C:\\data\\sample 7.dat");
/// const CString name = path.Mid(path.ReverseFind('\\') + 1);  // "sample 7.dat"
/// CString line;
/// line.Format("%s: %.2f mL", name.GetString(), 16.519);  // GetString: %s does not print a CString itself
/// @endcode
///
/// A value: copies are independent. Lengths and positions count bytes, and the text may hold zero bytes. Left, Mid and
/// Right cut at any byte; CQVariant::MBLeft cuts between characters. No number depends on the locale.
class QELLIB10_API CString {
public:
    CString() noexcept = default;
    /// A null pointer is the empty text.
    CString(const char* text);
    CString(const char* text, int length);  ///< @p length below 0 means 0
    explicit CString(char character, int repeat = 1);
    explicit CString(std::string_view text) : m_text(text) {}

    int GetLength() const noexcept { return static_cast<int>(m_text.size()); }
    bool IsEmpty() const noexcept { return m_text.empty(); }
    void Empty() noexcept { m_text.clear(); }
    /// The byte at @p index; 0 outside the text.
    char GetAt(int index) const noexcept;
    char operator[](int index) const noexcept { return GetAt(index); }
    operator const char*() const noexcept { return m_text.c_str(); }
    const char* GetString() const noexcept { return m_text.c_str(); }

    CString& operator=(const char* text);
    CString& operator=(char character);
    CString& operator=(std::string_view text) {
        m_text = text;
        return *this;
    }
    CString& operator+=(const CString& text);
    CString& operator+=(const char* text);
    CString& operator+=(char character);
    CString& operator+=(std::string_view text) {
        m_text += text;
        return *this;
    }

    CString Left(int count) const;
    CString Right(int count) const;
    CString Mid(int first) const;
    CString Mid(int first, int count) const;

    /// Position of the first match at or after @p start, or -1; -1 also for a @p start outside the text. @p start is
    /// the start of a character. A lead byte alone is never found.
    int Find(char character, int start = 0) const;
    int Find(const char* text, int start = 0) const;
    int ReverseFind(char character) const;
    /// Position of the first character that is in @p set, or -1.
    int FindOneOf(const char* set) const;

    /// Replaces every match, left to right; replaced text is not searched again.
    /// @return the number of replacements
    int Replace(const char* old, const char* replacement);
    int Replace(char old, char replacement);

    /// Without argument: blanks 09-0D and 20; else the given character, or all characters of a set.
    void TrimLeft();
    void TrimLeft(char character);
    void TrimLeft(const char* set);
    void TrimRight();
    void TrimRight(char character);
    void TrimRight(const char* set);

    /// Like printf, with "." as the decimal sign whatever the locale. Arguments may point into this text. Exponents and
    /// exact ties are printed as by the C library; CQVariant has the platform's forms. For `%s` of a CString pass
    /// text.GetString(): g++ accepts the object itself with a warning and then prints garbage.
    void Format(const char* format, ...) __attribute__((format(printf, 2, 3)));
    void FormatV(const char* format, va_list arguments) __attribute__((format(printf, 2, 0)));

    /// Order by characters, -1, 0 or 1; the second form ignores the case of Latin letters.
    int Compare(const char* other) const;
    int CompareNoCase(const char* other) const;

    /// At least @p minimum + 1 writable bytes that start with the text and a zero. Do not use this text before
    /// ReleaseBuffer has set the new length (by default up to the first zero byte).
    char* GetBuffer(int minimum);
    void ReleaseBuffer(int length = -1);

    /// The text of @p id from the registered string tables.
    /// @return 0 and the empty text when no table has it
    BOOL LoadString(UINT id);

    friend bool operator==(const CString& a, const CString& b) noexcept { return a.m_text == b.m_text; }
    friend bool operator==(const CString& a, const char* b) noexcept { return a.m_text == (b != nullptr ? b : ""); }
    friend bool operator==(const CString& a, std::string_view b) noexcept { return a.m_text == b; }
    friend std::weak_ordering operator<=>(const CString& a, const CString& b) { return a.Order(b.m_text) <=> 0; }
    friend std::weak_ordering operator<=>(const CString& a, const char* b) {
        return a.Order(b != nullptr ? b : "") <=> 0;
    }
    friend std::weak_ordering operator<=>(const CString& a, std::string_view b) { return a.Order(b) <=> 0; }

    // Texts of the standard library: found only if one operand is a CString.
    friend CString operator+(CString a, std::string_view b) {
        a += b;
        return a;
    }
    friend CString operator+(std::string_view a, const CString& b) { return CString(a) += b; }

    /// All bytes, zero bytes included.
    std::string_view View() const noexcept { return m_text; }
    const char* begin() const noexcept { return m_text.data(); }
    const char* end() const noexcept { return m_text.data() + m_text.size(); }

private:
    int Order(std::string_view other) const;
    void TrimLeftSet(std::string_view set);
    void TrimRightSet(std::string_view set);

    std::string m_text;
};

QELLIB10_API CString operator+(const CString& a, const CString& b);
QELLIB10_API CString operator+(const CString& a, const char* b);
QELLIB10_API CString operator+(const char* a, const CString& b);
QELLIB10_API CString operator+(const CString& a, char b);
QELLIB10_API CString operator+(char a, const CString& b);
/// @cond Doxygen does not find the scope of this.
// Equal texts have equal hashes: of all bytes, which operator== compares too.
template <> struct std::hash<CString> {
    std::size_t operator()(const CString& text) const noexcept { return hash<string_view>()(text.View()); }
};
/// @endcond
